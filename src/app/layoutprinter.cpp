#include "app/layoutprinter.h"

#include "config/layoutcodec.h"
#include "config/menustore.h"

#include <QJsonDocument>

QString layoutText(const MenuStore &store)
{
    QString text;
    for (const auto &entry : store.layout()) {
        text += enumToString(entry.style) + QLatin1Char('\t')
                + QString::fromUtf8(QJsonDocument(encode(entry.source)).toJson(QJsonDocument::Compact))
                + QLatin1Char('\n');
    }
    return text;
}
