// A file list as the desktop sees it.
#include "commands/clip_offer.h"
#include "commands/uri.h"

#include <QElapsedTimer>
#include <QUrl>

namespace tav {

namespace {

const char *const sMimes[] = {TRANSF_MIME, TRANSF_MIME_GNOME, TRANSF_MIME_URIS, TRANSF_MIME_KDE,
                              TRANSF_MIME_TEXT};

} // namespace

ClipOffer::ClipOffer(std::shared_ptr<const FileListRecord> list, bool cut, const TransfId &id)
    : m_list(std::move(list)), m_cut(cut), m_id(id)
{}

QStringList ClipOffer::formats() const
{
    QStringList list;
    for (const char *mime : sMimes)
        list.append(QLatin1String(mime));
    return list;
}

bool ClipOffer::hasFormat(const QString &mime) const
{
    for (const char *own : sMimes)
        if (mime == QLatin1String(own))
            return true;
    return mime == QLatin1String("text/plain;charset=utf-8");
}

TransfFiles ClipOffer::files() const
{
    TransfFiles files;
    files.cut = m_cut || m_moving;
    files.ours = true;
    files.id = m_id;
    files.lists.push_back(transf_own(*m_list));
    return files;
}

std::string ClipOffer::make(const QString &mime) const
{
    if (mime == QLatin1String(TRANSF_MIME))
        return transf_pack(*m_list, m_cut || m_moving, m_id);
    if (mime == QLatin1String(TRANSF_MIME_GNOME))
        return uri_make_gnome(*m_list, m_cut);
    if (mime == QLatin1String(TRANSF_MIME_URIS))
        return uri_make_list(*m_list);
    if (mime == QLatin1String(TRANSF_MIME_KDE))
        return uri_make_kde_mark(m_cut);
    if (mime.startsWith(QLatin1String(TRANSF_MIME_TEXT)))
        return uri_make_plain(*m_list);
    return {};
}

QVariant ClipOffer::retrieveData(const QString &mime, QMetaType type) const
{
    const QByteArray bytes = QByteArray::fromStdString(make(mime));
    if (type.id() == QMetaType::QString)
        return QString::fromUtf8(bytes);
    if (type.id() != QMetaType::QVariantList)
        return bytes;
    QVariantList urls;
    for (const QByteArray &line : bytes.split('\n'))
        if (!line.trimmed().isEmpty())
            urls.append(QUrl::fromEncoded(line.trimmed()));
    return urls;
}

int clip_offer_take(const QMimeData &data, TransfFiles &files)
{
    bool late = false;
    auto get = [&data, &late](const char *mime, std::string &bytes) {
        const QString name = QLatin1String(mime);
        if (late || !data.hasFormat(name))
            return false;
        QElapsedTimer waited;
        waited.start();
        bytes = data.data(name).toStdString();
        late = waited.elapsed() > CLIP_OFFER_PATIENCE_MS;
        return !bytes.empty();
    };
    return transf_take_from(get, files);
}

bool clip_offer_takes(const QMimeData &data)
{
    return data.hasFormat(QLatin1String(TRANSF_MIME)) ||
           data.hasFormat(QLatin1String(TRANSF_MIME_GNOME)) ||
           data.hasFormat(QLatin1String(TRANSF_MIME_URIS));
}

} // namespace tav
