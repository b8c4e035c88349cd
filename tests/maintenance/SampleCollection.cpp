#include "SampleCollection.h"

#include "store/ContentsLists.h"
#include "store/Db.h"
#include "store/Reanimator.h"
#include "store/Schema.h"

#include <QDir>

namespace vinora::test {
namespace {

struct Dictionary
{
    const char* table;
    const char* key;
};

Dictionary dictionaryOf(Category category)
{
    switch (category) {
    case Category::Audio:
        return {"Стиль", "КодСтиля"};
    case Category::Computer:
        return {"Описание", "КодОписания"};
    case Category::Dvd:
        break;
    }
    return {"Жанр", "КодЖанр"};
}

} // namespace

void makeDatabases(const QString& folder)
{
    createMainDatabase(QDir(folder).filePath(QStringLiteral("vinora.db")));
    createFilesDatabase(QDir(folder).filePath(QStringLiteral("vinora_files.db")));
    createTracksDatabase(QDir(folder).filePath(QStringLiteral("vinora_tracks.db")));
}

void addDiscs(const QString& folder, const QList<SampleDisc>& discs)
{
    const Db main(QDir(folder).filePath(QStringLiteral("vinora.db")));
    const Db files(QDir(folder).filePath(QStringLiteral("vinora_files.db")));
    const Db tracks(QDir(folder).filePath(QStringLiteral("vinora_tracks.db")));
    Transaction mainWrites(main);
    Transaction fileWrites(files);
    Transaction trackWrites(tracks);
    for (const SampleDisc& disc : discs) {
        const CategoryInfo& info = categoryInfo(disc.category);
        const Dictionary dictionary = dictionaryOf(disc.category);
        const QString table = QString::fromUtf8(dictionary.table);
        const QString key = QString::fromUtf8(dictionary.key);
        QVariant code = main.scalar("SELECT " + quoted(key) + " FROM " + quoted(table) + " WHERE " +
                                        quoted(table) + " = ?",
                                    {disc.dictionary});
        if (!code.isValid()) {
            main.exec("INSERT INTO " + quoted(table) + " (" + quoted(table) + ") VALUES (?)",
                      {disc.dictionary});
            code = main.scalar("SELECT last_insert_rowid()");
        }
        QStringList fields{"Номер", "Название", key, "Дисков"};
        QVariantList values{disc.number, disc.title, code,
                            std::max<int>(1, static_cast<int>(disc.ids.size()))};
        if (disc.category == Category::Audio) {
            fields.append("Альбом");
            values.append(disc.album.isNull() ? QVariant() : QVariant(disc.album));
        }
        const bool audio = disc.category == Category::Audio;
        const Db& lists = audio ? tracks : files;
        for (int k = 0; k < disc.ids.size(); ++k) {
            QString id = disc.ids[k];
            const bool withList = !id.startsWith(u'-');
            id.remove(u'-');
            fields.append(QStringLiteral("ДискID%1").arg(k + 1));
            values.append(id);
            if (!withList) {
                continue;
            }
            ContentsLists(lists, audio ? ContentsKind::Tracks : ContentsKind::Files).create(id);
            for (int row = 1; row <= disc.listRows; ++row) {
                if (audio) {
                    tracks.exec("INSERT INTO Треки (ДискID, Номер, Название) VALUES (?, ?, ?)",
                                {id, row, QStringLiteral("Трек %1 '%2'").arg(row).arg(id)});
                } else {
                    files.exec("INSERT INTO Файлы (ДискID, Имя, Путь, Размер) VALUES (?, ?, '\\', '1')",
                               {id, QStringLiteral("file%1_%2.txt").arg(row).arg(id)});
                }
            }
        }
        QStringList marks;
        marks.fill("?", fields.size());
        QStringList quotedFields;
        for (const QString& field : fields) {
            quotedFields.append(quoted(field));
        }
        main.exec("INSERT INTO " + quoted(info.table) + " (" + quotedFields.join(", ") + ") VALUES (" +
                      marks.join(", ") + ")",
                  values);
    }
    trackWrites.commit();
    fileWrites.commit();
    mainWrites.commit();
}

QVariant valueOf(const QString& path, const QString& sql, const QVariantList& values)
{
    const Db db(path, Db::Access::ReadOnly);
    return db.scalar(sql, values);
}

int countOf(const QString& path, const QString& sql, const QVariantList& values)
{
    return valueOf(path, sql, values).toInt();
}

QString integrityOf(const QString& path)
{
    const Db db(path, Db::Access::ReadOnly);
    return db.texts("PRAGMA integrity_check").join("; ");
}

QString catalogueOf(const QString& mainPath, Category category)
{
    const Db db(mainPath, Db::Access::ReadOnly);
    return db
        .texts("SELECT Номер || ' ' || Название FROM " + quoted(categoryInfo(category).table) +
               " ORDER BY Номер")
        .join(", ");
}

} // namespace vinora::test
