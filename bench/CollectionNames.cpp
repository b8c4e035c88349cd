#include "CollectionNames.h"

#include <QStringList>
#include <algorithm>
#include <cmath>

namespace vinora::bench {
namespace {

const QStringList kRussian =
    QStringLiteral(
        "музыка фото документы отчёт концерт альбом сборник видео игры программы драйверы письма "
        "договор проект архив дача отпуск семья свадьба день рождения новый год море лето зима весна "
        "осень школа университет работа диплом курсовая реферат лекции книги журнал газета рецепты "
        "кухня сад огород ремонт квартира машина гараж рыбалка охота поход горы река озеро лес поле "
        "город деревня москва питер казань сочи крым байкал урал сибирь волга песни романсы шансон "
        "рок поп джаз классика блюз кино мультфильмы сериал фильм трейлер клип интервью репортаж "
        "новости погода спорт футбол хоккей теннис бокс шахматы карты словарь справочник учебник "
        "задачи решения ответы тесты экзамен билеты шпаргалки заметки черновик чистовик копия "
        "резерв старое новое разное прочее личное общее важное срочно бухгалтерия налоги счета "
        "квитанции выписка баланс смета заявка приказ протокол акт накладная паспорт анкета резюме "
        "портрет пейзаж натюрморт выставка галерея музей театр балет опера оркестр хор группа "
        "солист певица артист ансамбль дуэт трио квартет гитара пианино скрипка барабаны флейта")
        .split(u' ');

const QStringList kEnglish =
    QStringLiteral(
        "music photos documents report concert album collection video games programs drivers letters "
        "contract project archive holiday family wedding birthday summer winter spring autumn school "
        "university work thesis lectures books magazine recipes kitchen garden repair house car travel "
        "mountains river lake forest city village london paris berlin songs ballads rock pop jazz "
        "classic blues movies cartoons series film trailer clip interview news weather sports football "
        "hockey tennis chess cards dictionary manual tutorial tasks answers tests exam notes draft copy "
        "backup old new misc private common important urgent accounting taxes invoices statement "
        "budget order minutes passport resume portrait landscape gallery museum theatre ballet opera "
        "orchestra choir band singer artist guitar piano violin drums flute setup install readme "
        "license update patch crack keygen serial demo trial full portable release final beta alpha "
        "source data config system windows linux office player codec plugin skin theme font icon")
        .split(u' ');

const QStringList kExtensions =
    QStringLiteral("mp3 jpg doc txt exe avi pdf zip png xls rar ini dll htm wav ogg").split(u' ');

} // namespace

int Random::zipf(int bound)
{
    const double u = (next() % 1000000) / 1000000.0;
    return std::min(bound - 1, static_cast<int>(std::pow(bound + 1.0, u)) - 1);
}

QString NameMaker::russianWord()
{
    return kRussian.at(m_random.zipf(static_cast<int>(kRussian.size())));
}

QString NameMaker::englishWord()
{
    return kEnglish.at(m_random.zipf(static_cast<int>(kEnglish.size())));
}

QString NameMaker::word()
{
    return m_random.below(2) == 0 ? russianWord() : englishWord();
}

QString NameMaker::title(int maxWords)
{
    QString text = word();
    text[0] = text[0].toUpper();
    const int count = 1 + m_random.below(maxWords);
    for (int i = 1; i < count; ++i) {
        text += u' ' + word();
    }
    return text;
}

QString NameMaker::fileName()
{
    const QString extension = kExtensions.at(m_random.zipf(static_cast<int>(kExtensions.size())));
    switch (m_random.below(6)) {
    case 0:
        return QStringLiteral("%1 - %2.mp3").arg(1 + m_random.below(20), 2, 10, QChar(u'0')).arg(title(4));
    case 1:
        return QStringLiteral("IMG_%1.JPG").arg(m_random.below(10000), 4, 10, QChar(u'0'));
    case 2:
        return title(3) + QStringLiteral(" %1.").arg(1990 + m_random.below(36)) + extension;
    case 3:
        return word() + u'_' + word() + u'.' + extension;
    default:
        return title(3) + u'.' + extension;
    }
}

QList<FileRow> NameMaker::fileTree(int rowCount)
{
    QList<FileRow> rows;
    rows.reserve(rowCount);
    rows.append({QStringLiteral("\\"), QStringLiteral("\\"), QStringLiteral("0"), {}});
    QStringList folders{QStringLiteral("\\")};
    while (rows.size() < rowCount) {
        // A new folder below one of the earlier ones, now and then; otherwise a file in the
        // latest folders.
        if (m_random.below(25) == 0 || folders.size() == 1) {
            const QString parent = folders.at(m_random.below(static_cast<int>(folders.size())));
            if (parent.count(u'\\') < 6) {
                const QString path = parent + title(3) + u'\\';
                folders.append(path);
                rows.append({path, path, QStringLiteral("0"), {}});
                continue;
            }
        }
        const QString folder =
            folders.at(folders.size() - 1 - m_random.below(std::min<int>(3, folders.size())));
        const QString comment = m_random.below(50) == 0 ? title(4) : QString();
        rows.append({fileName(), folder, QString::number(m_random.below(100000)), comment});
    }
    return rows;
}

} // namespace vinora::bench
