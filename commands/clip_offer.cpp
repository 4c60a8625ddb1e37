// A file list as the desktop sees it.
#include "commands/clip_offer.h"
#include "commands/uri.h"

#include <QUrl>

namespace tav {

namespace {

const char *const sMimes[] = {TRANSF_MIME, TRANSF_MIME_GNOME, TRANSF_MIME_URIS, TRANSF_MIME_KDE,
                              TRANSF_MIME_TEXT};

std::string x_bytes(const QMimeData &data, const char *mime)
{
    const QString name = QLatin1String(mime);
    if (!data.hasFormat(name))
        return {};
    return data.data(name).toStdString();
}

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
    files.cut = m_cut;
    files.ours = true;
    files.id = m_id;
    files.lists.push_back(transf_own(*m_list));
    return files;
}

std::string ClipOffer::make(const QString &mime) const
{
    if (mime == QLatin1String(TRANSF_MIME))
        return transf_pack(*m_list, m_cut, m_id);
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

TransfForms clip_offer_forms(const QMimeData &data)
{
    TransfForms forms;
    forms.own = x_bytes(data, TRANSF_MIME);
    if (!forms.own.empty())
        return forms;
    forms.gnome = x_bytes(data, TRANSF_MIME_GNOME);
    if (!forms.gnome.empty())
        return forms;
    forms.uris = x_bytes(data, TRANSF_MIME_URIS);
    if (!forms.uris.empty())
        forms.kde = x_bytes(data, TRANSF_MIME_KDE);
    return forms;
}

bool clip_offer_takes(const QMimeData &data)
{
    return data.hasFormat(QLatin1String(TRANSF_MIME)) ||
           data.hasFormat(QLatin1String(TRANSF_MIME_GNOME)) ||
           data.hasFormat(QLatin1String(TRANSF_MIME_URIS));
}

} // namespace tav
