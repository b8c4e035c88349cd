#include "lending/BorrowerNames.h"

#include "store/Db.h"

#include <QSqlQuery>

namespace vinora {

QList<Borrower> borrowers(const Db& db)
{
    QList<Borrower> list;
    QSqlQuery rows = db.query(QStringLiteral("SELECT КодИмени, Имя, Телефон FROM ИменаДолжников ORDER BY Имя, КодИмени"));
    while (rows.next()) {
        list.append({rows.value(0).toLongLong(), rows.value(1).toString(), rows.value(2).toString()});
    }
    return list;
}

qint64 addBorrower(const Db& db, const QString& name)
{
    return db.query(QStringLiteral("INSERT INTO ИменаДолжников (Имя, Телефон) VALUES (?, 'нет')"), {name})
        .lastInsertId()
        .toLongLong();
}

void renameBorrower(const Db& db, qint64 borrower, const QString& name)
{
    db.exec(QStringLiteral("UPDATE ИменаДолжников SET Имя = ? WHERE КодИмени = ?"), {name, borrower});
}

bool hasOpenLoan(const Db& db, qint64 borrower)
{
    return db.scalar(QStringLiteral("SELECT COUNT(*) FROM Должники WHERE КодИмяДолжника = ? AND Долг <> 0"),
                     {borrower})
               .toInt() > 0;
}

void deleteBorrower(const Db& db, qint64 borrower)
{
    Transaction transaction(db);
    db.exec(QStringLiteral("DELETE FROM Должники WHERE КодИмяДолжника = ?"), {borrower});
    db.exec(QStringLiteral("DELETE FROM ИменаДолжников WHERE КодИмени = ?"), {borrower});
    transaction.commit();
}

QList<HistoryLine> discHistory(const Db& db, Category category, qint64 key)
{
    const auto dayText = [](const QVariant& stored) {
        return stored.isNull() ? QStringLiteral("нет") : dateFrom(stored).toString(QStringLiteral("dd.MM.yyyy"));
    };
    QList<HistoryLine> lines;
    QSqlQuery rows = db.query(QStringLiteral("SELECT n.Имя, l.ДатаВыдачи, l.ДатаВозвратаРеальная FROM Должники l "
                                             "JOIN ИменаДолжников n ON n.КодИмени = l.КодИмяДолжника "
                                             "WHERE l.Категория = ? AND l.КодДиска = ? ORDER BY l.КодДолжника"),
                              {categoryInfo(category).code, key});
    while (rows.next()) {
        lines.append({rows.value(0).toString(), dayText(rows.value(1)), dayText(rows.value(2))});
    }
    return lines;
}

} // namespace vinora
