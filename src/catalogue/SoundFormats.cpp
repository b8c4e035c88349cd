#include "catalogue/SoundFormats.h"

#include "store/Db.h"

namespace vinora {

QList<SoundFormat> soundFormatDictionary(const Db& db)
{
    QList<SoundFormat> formats;
    QSqlQuery rows =
        db.query(QStringLiteral("SELECT КодФорматЗвука, ФорматЗвука FROM ФорматЗвука ORDER BY 1"));
    while (rows.next()) {
        formats.append({rows.value(0).toString(), rows.value(1).toString()});
    }
    return formats;
}

QStringList soundFormatCodes(const QString& stored)
{
    QStringList codes;
    for (const QChar code : stored) {
        if (code != u',') {
            codes.append(QString(code));
        }
    }
    return codes;
}

QString soundFormatField(const QStringList& codes)
{
    QString field;
    for (const QString& code : codes) {
        field += code + u',';
    }
    return field.left(30);
}

QStringList soundFormatNames(const Db& db, const QString& stored)
{
    QStringList names;
    for (const QString& code : soundFormatCodes(stored)) {
        const QVariant name =
            db.scalar(QStringLiteral("SELECT ФорматЗвука FROM ФорматЗвука WHERE КодФорматЗвука = ?"), {code});
        if (name.isValid()) {
            names.append(name.toString());
        }
    }
    return names;
}

} // namespace vinora
