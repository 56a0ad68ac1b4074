#include "catalog/motable.h"

#include <QFile>
#include <QtEndian>

namespace {

constexpr quint32 magic = 0x950412de;
constexpr quint32 swappedMagic = 0xde120495;
constexpr qint64 headerSize = 28;
constexpr qint64 descriptorSize = 8;

using Table = QHash<QString, QString>;

// A plural entry holds its forms one after another, NUL-separated.
QByteArray firstPart(const QByteArray &text)
{
    const qsizetype end = text.indexOf('\0');
    return end < 0 ? text : text.first(end);
}

class MoReader
{
public:
    explicit MoReader(const QByteArray &data)
        : m_data(data)
    {
    }

    Decoded<Table> read()
    {
        if (m_data.size() < headerSize)
            return Decoded<Table>::failure(QStringLiteral("file too short for a message catalog header"));
        const quint32 found = qFromLittleEndian<quint32>(m_data.constData());
        if (found != magic && found != swappedMagic)
            return Decoded<Table>::failure(QStringLiteral("not a message catalog (bad magic number)"));
        m_bigEndian = found == swappedMagic;
        // Only major revisions 0 and 1 exist; a later one may lay entries out
        // differently.
        const quint32 revision = word(4);
        if ((revision >> 16) > 1)
            return Decoded<Table>::failure(QStringLiteral("unsupported revision %1").arg(revision >> 16));
        const qint64 count = word(8);
        const qint64 originals = word(12);
        const qint64 translations = word(16);
        if (!fits(originals, count * descriptorSize) || !fits(translations, count * descriptorSize))
            return Decoded<Table>::failure(QStringLiteral("string table lies outside the file"));
        // The hash table is not used, but one that points outside the file
        // says the header is damaged.
        const qint64 hashSize = word(20);
        if (hashSize > 0 && !fits(word(24), hashSize * 4))
            return Decoded<Table>::failure(QStringLiteral("hash table lies outside the file"));

        Table table;
        for (qint64 i = 0; i < count; ++i) {
            const auto original = string(originals + i * descriptorSize);
            const auto translation = string(translations + i * descriptorSize);
            if (!original || !translation)
                return Decoded<Table>::failure(QStringLiteral("string %1 lies outside the file").arg(i));
            const QByteArray key = firstPart(*original);
            const QByteArray value = firstPart(*translation);
            if (key.isEmpty() || value.isEmpty())
                continue;
            table.insert(QString::fromUtf8(key), QString::fromUtf8(value));
        }
        return table;
    }

private:
    quint32 word(qint64 offset) const
    {
        const char *at = m_data.constData() + offset;
        return m_bigEndian ? qFromBigEndian<quint32>(at) : qFromLittleEndian<quint32>(at);
    }

    bool fits(qint64 offset, qint64 length) const
    {
        return offset >= 0 && length >= 0 && offset <= m_data.size() && length <= m_data.size() - offset;
    }

    // The string a (length, offset) descriptor points at; it must end with
    // the NUL the format puts after each string.
    std::optional<QByteArray> string(qint64 descriptor) const
    {
        const qint64 length = word(descriptor);
        const qint64 offset = word(descriptor + 4);
        if (!fits(offset, length + 1) || m_data.at(offset + length) != '\0')
            return std::nullopt;
        return QByteArray::fromRawData(m_data.constData() + offset, length);
    }

    const QByteArray &m_data;
    bool m_bigEndian = false;
};

} // namespace

Decoded<QHash<QString, QString>> parseMoCatalog(const QByteArray &data)
{
    return MoReader(data).read();
}

Decoded<QHash<QString, QString>> readMoCatalog(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return Decoded<QHash<QString, QString>>::failure(file.errorString());
    return parseMoCatalog(file.readAll());
}
