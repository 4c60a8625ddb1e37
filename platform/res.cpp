// Images and texts, out of the resources that are linked into the program.
#include "platform/res.h"

#include <QFile>
#include <QHash>
#include <string>
#include <unordered_map>

// Outside the namespace, as the resource compiler wants it.
static void res_link()
{
    Q_INIT_RESOURCE(tav);
    Q_INIT_RESOURCE(texts);
}

namespace tav {
namespace {

// A line holds a name, a blank and the text; "\n" in the text stands for a line's end.
void x_add_text(std::unordered_map<std::string, std::string> &texts, const QByteArray &line)
{
    const qsizetype blank = line.indexOf(' ');
    if (blank <= 0 || line.startsWith('#'))
        return;
    QByteArray text = line.mid(blank + 1);
    text.replace("\\n", "\n");
    texts[line.left(blank).toStdString()] = text.toStdString();
}

std::unordered_map<std::string, std::string> x_read_texts()
{
    res_link();
    std::unordered_map<std::string, std::string> texts;
    QFile file(QStringLiteral(":/txtdb.txt"));
    if (!file.open(QIODevice::ReadOnly))
        return texts;
    for (const QByteArray &line : file.readAll().split('\n'))
        x_add_text(texts, line);
    return texts;
}

} // namespace

QIcon res_image(const char *name)
{
    static QHash<QByteArray, QIcon> *const icons = new QHash<QByteArray, QIcon>;
    res_link();
    QIcon &icon = (*icons)[QByteArray(name)];
    const QString path = QStringLiteral(":/images/%1.svg").arg(QString::fromLatin1(name));
    if (icon.isNull() && QFile::exists(path))
        icon = QIcon(path);
    return icon;
}

const char *res_text(const char *name)
{
    static const auto *const texts = new std::unordered_map(x_read_texts());
    const auto found = texts->find(name);
    return found == texts->end() ? "" : found->second.c_str();
}

} // namespace tav
