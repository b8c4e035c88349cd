#include "search/frmDBFind.h"

#include "contents/frmFileList.h"
#include "contents/frmTrackList.h"
#include "frame/AppContext.h"
#include "frame/FaultLog.h"
#include "search/FoundDisc.h"
#include "search/SearchTexts.h"
#include "ui/ButtonRow.h"
#include "ui/EnterKey.h"

#include <QCheckBox>
#include <QComboBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QTreeWidget>
#include <QVBoxLayout>
#include <QtConcurrent/QtConcurrentRun>

namespace vinora {
namespace {

constexpr int kNumberColumn = 1;

const QString kFilesItem = QStringLiteral("файлов/папок");
const QString kTracksItem = QStringLiteral("треков");

} // namespace

frmDBFind::frmDBFind(AppContext& ctx, const QString& category, QWidget* parent) : QDialog(parent), m_ctx(ctx)
{
    setObjectName(QStringLiteral("frmDBFind"));
    setWindowTitle(QStringLiteral("Поиск"));
    resize(720, 520);
    auto* layout = new QVBoxLayout(this);

    auto* criteria = new QGridLayout;
    m_txtSearchText = new QLineEdit(this);
    m_txtSearchText->setObjectName(QStringLiteral("txtSearchText"));
    m_cmbList = new QComboBox(this);
    m_cmbList->setObjectName(QStringLiteral("cmbList"));
    m_cmbList->addItems({kFilesItem, kTracksItem});
    criteria->addWidget(new QLabel(QStringLiteral("Что искать:"), this), 0, 0);
    criteria->addWidget(m_txtSearchText, 0, 1, 1, 2);
    criteria->addWidget(new QLabel(QStringLiteral("Поиск"), this), 1, 0);
    criteria->addWidget(m_cmbList, 1, 1);
    criteria->setColumnStretch(2, 1);
    layout->addLayout(criteria);

    auto* options = new QHBoxLayout;
    auto* methodBox = new QGroupBox(QStringLiteral("Способ поиска"), this);
    auto* methods = new QVBoxLayout(methodBox);
    for (int i = 0; i < 2; ++i) {
        m_optSearchMethod[i] = new QRadioButton(methodBox);
        m_optSearchMethod[i]->setObjectName(QStringLiteral("optSearchMethod%1").arg(i));
        methods->addWidget(m_optSearchMethod[i]);
    }
    m_optSearchMethod[1]->setText(QStringLiteral("Искать в папках"));
    m_optSearchMethod[0]->setChecked(true);
    auto* checks = new QVBoxLayout;
    m_chWholeWord = new QCheckBox(QStringLiteral("Точное совпадение"), this);
    m_chWholeWord->setObjectName(QStringLiteral("chWholeWord"));
    m_chCommentOnly = new QCheckBox(QStringLiteral("Искать в комментариях"), this);
    m_chCommentOnly->setObjectName(QStringLiteral("chCommentOnly"));
    checks->addWidget(m_chWholeWord);
    checks->addWidget(m_chCommentOnly);
    checks->addStretch(1);
    options->addWidget(methodBox);
    options->addLayout(checks, 1);
    layout->addLayout(options);

    m_lblResult = new QLabel(this);
    m_lblResult->setObjectName(QStringLiteral("lblResult"));
    layout->addWidget(m_lblResult);
    m_lvFind = new QTreeWidget(this);
    m_lvFind->setObjectName(QStringLiteral("lvFind"));
    m_lvFind->setRootIsDecorated(false);
    m_lvFind->setUniformRowHeights(true);
    m_lvFind->setAllColumnsShowFocus(true);
    m_lvFind->header()->setStretchLastSection(false);
    // Hits stand in the order they were found until a column is clicked.
    m_sort = std::make_unique<TextColumnSort>(m_lvFind);
    m_sort->setCompare(kNumberColumn, compareNumberCells);
    layout->addWidget(m_lvFind, 1);

    auto* bottom = new QHBoxLayout;
    bottom->addWidget(new QLabel(QStringLiteral("Диск №:"), this));
    m_txtNoFile = new QLineEdit(this);
    m_txtNoFile->setObjectName(QStringLiteral("txtNoFile"));
    m_txtNoFile->setReadOnly(true);
    m_txtNoFile->setFocusPolicy(Qt::ClickFocus);
    m_txtNoFile->setMaximumWidth(90);
    bottom->addWidget(m_txtNoFile);
    bottom->addStretch(1);
    m_buttons = addButtonRow(bottom, this,
                             {QStringLiteral("Закрыть"), QStringLiteral("Найти"), QStringLiteral("Очистить")},
                             {1, 2, 0});
    layout->addLayout(bottom);

    connect(m_buttons[0], &QPushButton::clicked, this, &QDialog::reject);
    connect(m_buttons[1], &QPushButton::clicked, this, &frmDBFind::cmdSearch);
    connect(m_buttons[2], &QPushButton::clicked, this, &frmDBFind::cmdClear);
    onEnter(m_txtSearchText, [this] {
        if (!searching()) {
            cmdSearch();
        }
    });
    connect(m_cmbList, &QComboBox::currentIndexChanged, this, &frmDBFind::modeChanged);
    connect(m_optSearchMethod[0], &QRadioButton::toggled, this, &frmDBFind::modeChanged);
    connect(m_lvFind, &QTreeWidget::currentItemChanged, this, &frmDBFind::showCurrentNumber);
    connect(m_lvFind, &QTreeWidget::itemDoubleClicked, this, [this](QTreeWidgetItem* item) {
        m_lvFind->setCurrentItem(item);
        lvFind_DblClick();
    });
    onEnter(m_lvFind, [this] { lvFind_DblClick(); });
    connect(&m_search, &QFutureWatcher<Outcome>::finished, this, &frmDBFind::searchFinished);

    {
        const QSignalBlocker quiet(m_cmbList);
        m_cmbList->setCurrentText(category == u"AD" ? kTracksItem : kFilesItem);
    }
    modeChanged();
    showRunning();
    m_ctx.OpenedFromSearch = true;
}

frmDBFind::~frmDBFind()
{
    m_stop = true;
    m_search.waitForFinished();
    m_ctx.OpenedFromSearch = false;
}

void frmDBFind::done(int result)
{
    abandonSearch();
    m_ctx.OpenedFromSearch = false;
    QDialog::done(result);
}

SearchRequest frmDBFind::request() const
{
    SearchRequest request;
    request.tracks = m_cmbList->currentText() == kTracksItem;
    request.folders = m_optSearchMethod[1]->isChecked();
    request.whole = m_chWholeWord->isChecked();
    request.comments = m_chCommentOnly->isChecked();
    request.text = m_txtSearchText->text();
    return request;
}

// A change of what is searched for: the captions and columns follow it, and the hits of
// the other kind go, as a double click on them would open the wrong list.
void frmDBFind::modeChanged()
{
    const SearchRequest now = request();
    m_optSearchMethod[0]->setText(QStringLiteral("Искать в ") + searchPlaceWord(now));
    // Tracks have neither folders nor a comment search.
    m_optSearchMethod[1]->setEnabled(!now.tracks);
    m_chCommentOnly->setEnabled(!now.tracks);
    abandonSearch();
    m_shown = now;
    clearResults();
    const QStringList columns = resultColumns(now);
    m_lvFind->setColumnCount(static_cast<int>(columns.size()));
    m_lvFind->setHeaderLabels(columns);
    m_lvFind->header()->setSectionResizeMode(0, QHeaderView::Stretch);
    m_lvFind->header()->setSectionResizeMode(kNumberColumn, QHeaderView::ResizeToContents);
    if (columns.size() > 2) {
        m_lvFind->header()->setSectionResizeMode(2, QHeaderView::Stretch);
    }
}

void frmDBFind::clearResults()
{
    m_lvFind->clear();
    m_found = 0;
    m_lblResult->setText(resultLine(m_shown, 0));
    m_txtNoFile->clear();
}

void frmDBFind::cmdClear()
{
    abandonSearch();
    clearResults();
    m_txtSearchText->clear();
    m_txtSearchText->setFocus();
}

void frmDBFind::cmdSearch()
{
    if (searching()) {
        stopSearch();
        return;
    }
    underErrorReport(m_ctx, QStringLiteral("frmDBFind, ReadyToFindFile()"), [this] { ReadyToFindFile(); });
}

void frmDBFind::ReadyToFindFile()
{
    // A search given up a moment ago ends at its next step; it is waited for, not shown.
    m_search.waitForFinished();
    m_shown = request();
    clearResults();
    m_batches = 0;
    const SearchDatabases databases = searchDatabases(m_ctx, m_shown);
    m_stop = false;
    m_abandoned = false;
    const quint64 generation = ++m_generation;
    m_search.setFuture(QtConcurrent::run([this, databases, request = m_shown, generation] {
        Outcome result;
        try {
            result.outcome = searchContents(
                databases, request,
                [this, generation](const QList<SearchHit>& hits) {
                    QMetaObject::invokeMethod(
                        this, [this, generation, hits] { addHits(generation, hits); }, Qt::QueuedConnection);
                },
                &m_stop);
        } catch (...) {
            result.error = std::current_exception();
        }
        return result;
    }));
    m_running = true;
    showRunning();
}

void frmDBFind::addHits(quint64 generation, const QList<SearchHit>& hits)
{
    if (generation != m_generation || m_abandoned) {
        return;
    }
    QList<QTreeWidgetItem*> items;
    items.reserve(hits.size());
    for (const SearchHit& hit : hits) {
        QStringList cells{hit.name, numberCell(hit.number, hit.disc)};
        if (!m_shown.tracks) {
            cells.append(pathCell(hit.path));
        }
        auto* item = new QTreeWidgetItem(cells);
        item->setData(0, Qt::UserRole, hit.path); // the root stays "\" behind its "..."
        items.append(item);
    }
    m_lvFind->addTopLevelItems(items);
    m_found += static_cast<int>(hits.size());
    ++m_batches;
    m_lblResult->setText(resultLine(m_shown, m_found));
}

// The batches of the search were posted before its end, so they are all in the list now.
void frmDBFind::searchFinished()
{
    // The end of a search given up and followed by a new one may still come through.
    if (!m_running || !m_search.future().isFinished()) {
        return;
    }
    m_running = false;
    showRunning();
    if (m_abandoned) {
        return;
    }
    const Outcome result = m_search.result();
    m_sort->apply();
    m_lblResult->setText(resultLine(m_shown, m_found));
    if (result.error) {
        underErrorReport(m_ctx, QStringLiteral("frmDBFind, ReadyToFindFile()"),
                         [&] { std::rethrow_exception(result.error); });
        return;
    }
    if (m_found == 0 && !result.outcome.stopped) {
        m_ctx.prompter().message(nothingFoundMessage(m_shown), MessageStyle::Information);
        m_txtSearchText->setFocus();
        m_txtSearchText->selectAll();
    }
}

void frmDBFind::stopSearch()
{
    m_stop = true;
}

void frmDBFind::abandonSearch()
{
    if (!m_running) {
        return;
    }
    m_stop = true;
    m_abandoned = true;
    showRunning();
}

void frmDBFind::showRunning()
{
    const bool running = searching();
    m_buttons[1]->setText(running ? QStringLiteral("Остановить") : QStringLiteral("Найти"));
    if (running) {
        setCursor(Qt::BusyCursor);
    } else {
        unsetCursor();
    }
}

void frmDBFind::showCurrentNumber()
{
    const QTreeWidgetItem* item = m_lvFind->currentItem();
    m_txtNoFile->setText(item ? item->text(kNumberColumn) : QString());
}

void frmDBFind::lvFind_DblClick()
{
    const QTreeWidgetItem* item = m_lvFind->currentItem();
    if (item == nullptr) {
        return;
    }
    const std::optional<DiscPlace> place = parseNumberCell(item->text(kNumberColumn));
    if (!place) {
        return;
    }
    underErrorReport(m_ctx, QStringLiteral("frmDBFind, lvFind_DblClick()"), [&] {
        const std::optional<FoundDisc> found = readFoundDisc(m_ctx.MainDBPath, m_shown.tracks, place->number);
        if (!found) {
            // Deleted or renumbered since the search.
            m_ctx.prompter().message(QStringLiteral("Диск № ") + QString::number(place->number) +
                                         QStringLiteral(" не найден."),
                                     MessageStyle::Exclamation);
            return;
        }
        m_ctx.DiscIDSlots = found->ids;
        m_ctx.CurrentDiscID = found->ids[0];
        if (m_shown.tracks) {
            openTrackList(*found, place->disc, *item);
        } else {
            openFileList(*found, place->disc, *item);
        }
    });
}

void frmDBFind::openFileList(const FoundDisc& found, int disc, const QTreeWidgetItem& hit)
{
    frmFileList list(m_ctx, found.number, found.name, found.discs, this);
    list.showDisc(disc);
    if (list.showFolder(hit.data(0, Qt::UserRole).toString()) && !m_shown.folders) {
        list.showFile(hit.text(0));
    }
    m_ctx.prompter().showModal(list);
}

void frmDBFind::openTrackList(const FoundDisc& found, int disc, const QTreeWidgetItem& hit)
{
    frmTrackList list(m_ctx, found.number, found.name, found.album, found.discs, this);
    list.showDisc(disc);
    list.showTrack(hit.text(0));
    m_ctx.prompter().showModal(list);
}

} // namespace vinora
