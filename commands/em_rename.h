// Editing a name in its row of the list. Main thread only.
#pragma once

#include <QLineEdit>
#include <string>

class QTimer;

namespace tav {

// Renames an entry of a directory, never onto another one. 0, or -1 with the message for the user.
int em_rename_file(const std::string &directory, const std::string &from, const std::string &to,
                   std::string &message);

// The field over the name. It belongs to one name in one directory: when that row moves it follows,
// when the row is gone it goes too. Enter applies, Escape or losing the focus leaves.
class EmRenameField : public QLineEdit {
    Q_OBJECT

public:
    EmRenameField(std::string directory, std::string name);
    bool place(); // to where the name's row is now; false when there is none

protected:
    bool event(QEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;
    void focusOutEvent(QFocusEvent *event) override;

private:
    void apply();
    void leave();

    std::string m_directory;
    std::string m_name;
    bool m_done = false; // applied or left: nothing more happens
};

} // namespace tav
