// A window that files are dragged from and onto, well or badly. For tests. Tells on its standard
// output how its own drag ended and what was dropped on it.
// Usage: dnd_partner OFFERS TAKES MIME=FILE...
//   OFFERS  copy, move or both: what its drag may become
//   TAKES   copy or move: what a drop on it is said to have been
// Prints "told copy", "told move" or "told none" when whoever its drag was dropped on has reported
// (the toolkit itself does not wait for that), and for a drop "dropped copy" or "dropped move",
// followed by the URI list.
#include <QAbstractNativeEventFilter>
#include <QApplication>
#include <QDrag>
#include <QDropEvent>
#include <QFile>
#include <QMimeData>
#include <QMouseEvent>
#include <QWidget>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <xcb/xcb.h>

namespace {

const char *x_name(Qt::DropAction action)
{
    return action == Qt::CopyAction ? "copy" : action == Qt::MoveAction ? "move" : "none";
}

Qt::DropActions x_actions(const QString &name)
{
    const Qt::DropActions copy = Qt::CopyAction, move = Qt::MoveAction;
    return name == QLatin1String("copy")   ? copy
           : name == QLatin1String("move") ? move
                                           : copy | move;
}

// Sees what is reported by the server.
class Reports : public QAbstractNativeEventFilter {
public:
    bool nativeEventFilter(const QByteArray &, void *message, qintptr *) override
    {
        const auto *event = static_cast<const xcb_client_message_event_t *>(message);
        if ((event->response_type & 0x7F) != XCB_CLIENT_MESSAGE ||
            event->type != x_atom("XdndFinished"))
            return false;
        const uint32_t action = event->data.data32[2];
        printf("told %s\n", action == x_atom("XdndActionCopy")   ? "copy"
                            : action == x_atom("XdndActionMove") ? "move"
                                                                 : "none");
        fflush(stdout);
        return false;
    }

private:
    static xcb_atom_t x_atom(const char *name)
    {
        auto *server = qApp->nativeInterface<QNativeInterface::QX11Application>()->connection();
        auto cookie = xcb_intern_atom(server, 0, static_cast<uint16_t>(strlen(name)), name);
        auto *reply = xcb_intern_atom_reply(server, cookie, nullptr);
        const xcb_atom_t atom = reply ? reply->atom : static_cast<xcb_atom_t>(XCB_ATOM_NONE);
        free(reply);
        return atom;
    }
};

class Partner : public QWidget {
public:
    explicit Partner(const QStringList &arguments)
        : m_offers(x_actions(arguments[1])),
          m_takes(arguments[2] == QLatin1String("move") ? Qt::MoveAction : Qt::CopyAction),
          m_forms(arguments.mid(3))
    {
        setWindowTitle(QStringLiteral("partner"));
        setAcceptDrops(true);
    }

protected:
    void mousePressEvent(QMouseEvent *event) override { m_pressed = event->position().toPoint(); }

    void mouseMoveEvent(QMouseEvent *event) override
    {
        const QPoint way = event->position().toPoint() - m_pressed;
        if (!(event->buttons() & Qt::LeftButton) ||
            way.manhattanLength() < QApplication::startDragDistance())
            return;
        auto *data = new QMimeData;
        for (const QString &form : m_forms) {
            QFile file(form.section(QLatin1Char('='), 1));
            if (file.open(QIODevice::ReadOnly))
                data->setData(form.section(QLatin1Char('='), 0, 0), file.readAll());
        }
        auto *drag = new QDrag(this);
        drag->setMimeData(data);
        drag->exec(m_offers);
    }

    void dragEnterEvent(QDragEnterEvent *event) override { take(*event); }
    void dragMoveEvent(QDragMoveEvent *event) override { take(*event); }
    void dropEvent(QDropEvent *event) override
    {
        take(*event);
        printf("dropped %s\n%s", x_name(event->dropAction()),
               event->mimeData()->data(QStringLiteral("text/uri-list")).constData());
        fflush(stdout);
    }

private:
    void take(QDropEvent &event)
    {
        event.setDropAction(m_takes);
        event.accept();
    }

    Qt::DropActions m_offers;
    Qt::DropAction m_takes;
    QStringList m_forms;
    QPoint m_pressed;
};

} // namespace

int main(int argc, char **argv)
{
    QApplication application(argc, argv);
    if (argc < 3)
        return 1;
    Reports reports;
    application.installNativeEventFilter(&reports);
    Partner partner(QApplication::arguments());
    partner.resize(200, 150);
    partner.show();
    return QApplication::exec();
}
