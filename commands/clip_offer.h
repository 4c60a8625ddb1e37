// A file list as the desktop sees it: one object for the clipboard and for drags, whose forms are
// made when somebody asks for them.
#pragma once

#include "commands/transf_take.h"

#include <QMimeData>
#include <memory>

namespace tav {

class ClipOffer : public QMimeData {
    Q_OBJECT

public:
    // The list must own its texts.
    ClipOffer(std::shared_ptr<const FileListRecord> list, bool cut, const TransfId &id);

    QStringList formats() const override;
    bool hasFormat(const QString &mime) const override;

    const std::shared_ptr<const FileListRecord> &list() const { return m_list; }
    bool cut() const { return m_cut; }
    const TransfId &id() const { return m_id; }

    // What the pointer of a drag shows: our own form tells it, so that it is known to whoever the
    // files are dropped on, however late.
    void set_moving(bool moving) { m_moving = moving; }

    // The offer's files as if they had been read: copies, so both live on their own.
    TransfFiles files() const;

protected:
    QVariant retrieveData(const QString &mime, QMetaType type) const override;

private:
    std::string make(const QString &mime) const;

    std::shared_ptr<const FileListRecord> m_list;
    bool m_cut;
    bool m_moving = false;
    TransfId m_id;
};

// A form for which the offering program let us wait longer than this is the last one asked for.
constexpr int CLIP_OFFER_PATIENCE_MS = 1000;

// The files of somebody else's offer: 0, or -1 (files untouched) when there are none. May wait for
// the program that offers.
int clip_offer_take(const QMimeData &data, TransfFiles &files);

// Whether the offer has a form that we take.
bool clip_offer_takes(const QMimeData &data);

} // namespace tav
