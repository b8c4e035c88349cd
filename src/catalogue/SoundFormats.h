#pragma once

#include <QList>
#include <QString>
#include <QStringList>

namespace vinora {

class Db;

// The sound tracks of a DVD. The record keeps them in its ФорматЗвука field as one-digit
// codes of the dictionary ФорматЗвука, each followed by a comma: "1,3,".
struct SoundFormat
{
    QString code;
    QString name;
};

// The whole dictionary, by code.
QList<SoundFormat> soundFormatDictionary(const Db& db);

// The codes a stored field holds, in order.
QStringList soundFormatCodes(const QString& stored);

// The field for the chosen codes, cut to the column's 30 characters.
QString soundFormatField(const QStringList& codes);

// The names of the formats a stored field holds; codes the dictionary lacks are left out.
QStringList soundFormatNames(const Db& db, const QString& stored);

} // namespace vinora
