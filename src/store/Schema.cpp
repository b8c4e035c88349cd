#include "store/Schema.h"

#include "store/Db.h"

namespace vinora {
namespace {

const QString kToday = QStringLiteral("(date('now','localtime'))");

FieldDef counter(const char* name)
{
    return {QString::fromUtf8(name), FieldType::Long, 0, true};
}
FieldDef longField(const char* name)
{
    return {QString::fromUtf8(name), FieldType::Long};
}
FieldDef integer(const char* name)
{
    return {QString::fromUtf8(name), FieldType::Integer};
}
FieldDef text(const char* name, int size, bool allowEmpty = false)
{
    return {QString::fromUtf8(name), FieldType::Text, size, false, allowEmpty};
}
FieldDef date(const char* name, bool today = false)
{
    return {QString::fromUtf8(name), FieldType::Date, 0, false, false, today ? kToday : QString()};
}
FieldDef boolean(const char* name, bool defaultTrue = false)
{
    return {QString::fromUtf8(name),
            FieldType::Boolean,
            0,
            false,
            false,
            defaultTrue ? QStringLiteral("-1") : QStringLiteral("0")};
}

// Fields named `stem`1 .. `stem`6 (with `suffix` behind the digit).
void numbered(QList<FieldDef>& fields, FieldDef (*make)(const char*), const char* stem,
              const char* suffix = "")
{
    for (int k = 1; k <= 6; ++k) {
        const QByteArray name = QByteArray(stem) + QByteArray::number(k) + suffix;
        fields.append(make(name.constData()));
    }
}

FieldDef discId(const char* name)
{
    return text(name, 10, true);
}

TableDef dictionary(const char* table, const char* key, const char* nameField, QStringList rows)
{
    return {QString::fromUtf8(table),
            {counter(key), text(nameField, 50, true)},
            {},
            QString::fromUtf8(nameField),
            std::move(rows)};
}

QStringList words(std::initializer_list<const char*> list)
{
    QStringList out;
    for (const char* w : list) {
        out.append(QString::fromUtf8(w));
    }
    return out;
}

QList<TableDef> buildMainTables()
{
    TableDef info{QStringLiteral("_Информация"),
                  {date("ПослОбновлАудио"), date("ПослОбновлКомпьютер"), date("ПослОбновлDVD"),
                   date("РезервнаяКопия")}};

    TableDef audio{QStringLiteral("Аудио"),
                   {counter("КодАудиоДиск"), integer("Номер"), text("Название", 60), text("Альбом", 60, true),
                    text("Год", 5), integer("Дисков")}};
    numbered(audio.fields, integer, "Записей");
    numbered(
        audio.fields, [](const char* n) { return text(n, 5); }, "Время");
    audio.fields +=
        {longField("КодСтиля"), date("ДатаЗаписи", true), date("ДатаИзменения", true), boolean("Должник")};
    numbered(audio.fields, discId, "ДискID");
    numbered(audio.fields, discId, "ДискID", "_d");
    audio.relations = {{QStringLiteral("АудиоСтиль"), QStringLiteral("КодСтиля"), QStringLiteral("Стиль"),
                        QStringLiteral("КодСтиля"), true, false}};

    TableDef style = dictionary(
        "Стиль", "КодСтиля", "Стиль",
        words({"",          "Ballad",      "Blues",        "Classical",   "Country",    "Dance",
               "Disco",     "Dream",       "Duet",         "Folk",        "Hardcore",   "Funk",
               "Hard Rock", "Heavy Metal", "Instrumental", "Jazz",        "Jungle",     "Metal",
               "Opera",     "Pop",         "Punk",         "Raggae",      "Rap",        "Punk Rock",
               "Rave",      "Retro",       "Rock",         "Rock & Roll", "Soundtrack", "Techno",
               "Trance"}));

    TableDef loans{QStringLiteral("Должники"),
                   {counter("КодДолжника"), longField("КодИмяДолжника"), longField("КодДиска"),
                    text("Категория", 3), date("ДатаВыдачи", true), date("ДатаВозврата"),
                    date("ДатаВозвратаРеальная"), boolean("Долг", true)},
                   {{QStringLiteral("Должники"), QStringLiteral("КодИмяДолжника"),
                     QStringLiteral("ИменаДолжников"), QStringLiteral("КодИмени"), false, true}}};

    TableDef borrowers{QStringLiteral("ИменаДолжников"),
                       {counter("КодИмени"), text("Имя", 50), text("Телефон", 15)}};

    TableDef computer{QStringLiteral("Компьютер"),
                      {counter("КодКомпьютерныйДиск"), integer("Номер"), text("Название", 60),
                       longField("КодОписания"), text("РасОписание", 255, true), text("Год", 5),
                       integer("Дисков"), date("ДатаЗаписи", true), date("ДатаИзменения"),
                       boolean("Должник")}};
    numbered(computer.fields, discId, "ДискID");
    numbered(computer.fields, discId, "ДискID", "_d");
    computer.relations = {{QStringLiteral("КомпьютерСтиль"), QStringLiteral("КодОписания"),
                           QStringLiteral("Описание"), QStringLiteral("КодОписания"), true, false}};

    TableDef description = dictionary("Описание", "КодОписания", "Описание",
                                      words({"",
                                             "Сборник программ",
                                             "Симулятор автогонок",
                                             "Симулятор истребителя",
                                             "Сборник игр",
                                             "3D-шутер",
                                             "3D Action/Adventure",
                                             "3D Action",
                                             "Квест",
                                             "RPG",
                                             "Музыка в формате MP3",
                                             "Стратегия",
                                             "VideoCD",
                                             "Энциклопедия",
                                             "Мультимедиа",
                                             "Словарь",
                                             "Графика",
                                             "Мультимедиа каталог",
                                             "Программирование",
                                             "Электронный справочник",
                                             "Мультимедиа журнал",
                                             "Офисные программы",
                                             "WEB-дизайн"}));

    TableDef dvd{QStringLiteral("DVD"),
                 {counter("КодDVDДиск"), integer("Номер"), text("Название", 60), text("Описание", 255, true),
                  text("Год", 5), integer("Дисков"), integer("Время"), integer("Зона"), longField("КодЖанр"),
                  text("ФорматЗвука", 30, true), date("ДатаЗаписи", true), date("ДатаИзменения", true),
                  boolean("Должник")}};
    numbered(dvd.fields, discId, "ДискID", "_d");
    dvd.relations = {{QStringLiteral("DVDЖанр"), QStringLiteral("КодЖанр"), QStringLiteral("Жанр"),
                      QStringLiteral("КодЖанр"), true, false}};

    TableDef genre = dictionary("Жанр", "КодЖанр", "Жанр",
                                words({"", "Боевик", "Фантастика", "Комедия", "Мультфильм", "Ужасы",
                                       "Мистика", "Мелодрама", "Исторический", "Триллер"}));

    TableDef soundFormat = dictionary("ФорматЗвука", "КодФорматЗвука", "ФорматЗвука",
                                      words({"Dolby Digital 2.0", "Dolby Digital 5.1", "Dolby Sorround",
                                             "Dolby Pro Logic", "DTS", "AS3", "Stereo", "Mono"}));

    return {info, audio, style, loans, borrowers, computer, description, dvd, genre, soundFormat};
}

TableDef filterTable(const char* name, std::initializer_list<const char*> rows)
{
    return {QString::fromUtf8(name),
            {text("Файл", 255), boolean("Use", true)},
            {},
            QStringLiteral("Файл"),
            words(rows)};
}

// A named CHECK, so that a refusal tells which rule it broke (see sqlError).
QString check(const char* rule, const QString& field, const QString& condition)
{
    return QStringLiteral(" CONSTRAINT ") + quoted(QString::fromLatin1(rule) + u':' + field) +
           QStringLiteral(" CHECK (") + condition + u')';
}

QString columnSql(const FieldDef& field)
{
    const QString name = quoted(field.name);
    QString sql = name;
    switch (field.type) {
    case FieldType::Long:
        sql += field.counter ? QStringLiteral(" INTEGER PRIMARY KEY AUTOINCREMENT")
                             : QStringLiteral(" INTEGER") +
                                   check("range", field.name,
                                         name + QStringLiteral(" BETWEEN -2147483648 AND 2147483647"));
        break;
    case FieldType::Integer:
        sql += QStringLiteral(" INTEGER") +
               check("range", field.name, name + QStringLiteral(" BETWEEN -32768 AND 32767"));
        break;
    case FieldType::Text:
        sql +=
            QStringLiteral(" TEXT COLLATE NOCASE") +
            check("size", field.name,
                  QStringLiteral("length(") + name + QStringLiteral(") <= ") + QString::number(field.size));
        if (!field.allowEmpty) {
            sql += check("empty", field.name, name + QStringLiteral(" <> ''"));
        }
        break;
    case FieldType::Date:
        sql += QStringLiteral(" TEXT");
        break;
    case FieldType::Boolean:
        sql += QStringLiteral(" INTEGER") + check("flag", field.name, name + QStringLiteral(" IN (0, -1)"));
        break;
    }
    if (!field.defaultSql.isEmpty()) {
        sql += QStringLiteral(" DEFAULT ") + field.defaultSql;
    }
    return sql;
}

} // namespace

QString quoted(const QString& identifier)
{
    QString escaped = identifier;
    escaped.replace(u'"', QStringLiteral("\"\""));
    return u'"' + escaped + u'"';
}

const QList<TableDef>& mainTables()
{
    static const QList<TableDef> tables = buildMainTables();
    return tables;
}

const QList<TableDef>& filterTables()
{
    static const QList<TableDef> tables = {
        filterTable("Фильтр1", {".txt", ".doc", ".diz", ".nfo", ".htm", ".inf", ".ini", ".log"}),
        filterTable("Фильтр2", {".exe", ".zip", ".rar"})};
    return tables;
}

QString createTableSql(const TableDef& table)
{
    QStringList columns;
    for (const FieldDef& field : table.fields) {
        columns.append(columnSql(field));
    }
    for (const RelationDef& relation : table.relations) {
        QString constraint = QStringLiteral("CONSTRAINT ") + quoted(relation.name) +
                             QStringLiteral(" FOREIGN KEY (") + quoted(relation.field) +
                             QStringLiteral(") REFERENCES ") + quoted(relation.parentTable) + u'(' +
                             quoted(relation.parentField) + u')';
        if (relation.updateCascade) {
            constraint += QStringLiteral(" ON UPDATE CASCADE");
        }
        if (relation.deleteCascade) {
            constraint += QStringLiteral(" ON DELETE CASCADE");
        }
        columns.append(constraint);
    }
    return QStringLiteral("CREATE TABLE ") + quoted(table.name) + QStringLiteral(" (\n  ") +
           columns.join(QStringLiteral(",\n  ")) + QStringLiteral("\n)");
}

void createTable(const Db& db, const TableDef& table)
{
    db.exec(createTableSql(table));
    const QString insert = QStringLiteral("INSERT INTO ") + quoted(table.name) + u'(' +
                           quoted(table.initialField) + QStringLiteral(") VALUES (?)");
    for (const QString& row : table.initialRows) {
        // The "nothing chosen" row of a dictionary has the empty name.
        db.exec(insert, {row});
    }
}

} // namespace vinora
