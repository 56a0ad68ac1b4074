#pragma once

#include "common/decoded.h"

#include <QByteArray>
#include <QHash>
#include <QString>

// Reader of GNU gettext message catalogs (.mo files).
//
// The key of an entry is its msgid, or "context\u0004msgid" when it has a
// context; a plural entry is keyed by its singular msgid and gives its first
// form. The header entry and empty translations are left out. Every count,
// offset and length is checked against the data before it is used, so a
// damaged file is an error, never a read out of bounds.
Decoded<QHash<QString, QString>> parseMoCatalog(const QByteArray &data);
Decoded<QHash<QString, QString>> readMoCatalog(const QString &path);
