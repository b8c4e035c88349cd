#include "contents/frmFileList.h"

#include "contents/FileListStore.h"
#include "contents/ListWindowParts.h"
#include "contents/StoredFileList.h"
#include "contents/frmFileListOption.h"
#include "frame/AppContext.h"
#include "frame/FaultLog.h"
#include "frame/TextRules.h"
#include "recognition/DiscIdentity.h"
#include "recognition/MountPoints.h"
#include "recognition/frmSelectCategory.h"
#include "ui/ButtonRow.h"
#include "ui/TextColumnSort.h"

#include <QComboBox>
#include <QDir>
#include <QFileInfo>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSplitter>
#include <QStorageInfo>
#include <QTemporaryDir>
#include <QTreeWidget>
#include <QUrl>
#include <QVBoxLayout>
#include <QtConcurrent/QtConcurrentRun>
#include <algorithm>
#include <array>

namespace vinora {

frmFileList::frmFileList(AppContext& ctx, int number, const QString& name, int discs, QWidget* parent)
    : QDialog(parent), m_ctx(ctx), m_number(number)
{
    setObjectName(QStringLiteral("frmFileList"));
    setWindowTitle(QStringLiteral("Файлы"));
    resize(860, 560);
    auto* layout = new QVBoxLayout(this);
    auto* header = new QLabel(QStringLiteral("Список файлов Компьютерного диска"), this);
    QFont bold = header->font();
    bold.setBold(true);
    header->setFont(bold);
    layout->addWidget(header);
    auto* top = new QHBoxLayout;
    auto* lblNumber = new QLabel(QStringLiteral("№ ") + QString::number(number), this);
    lblNumber->setObjectName(QStringLiteral("lblNumber"));
    auto* lblName = new QLabel(name, this);
    lblName->setObjectName(QStringLiteral("lblName"));
    m_cmbCountCD = discChooser(discs, this);
    top->addWidget(lblNumber);
    top->addWidget(lblName, 1);
    top->addWidget(new QLabel(QStringLiteral("Диск:"), this));
    top->addWidget(m_cmbCountCD);
    layout->addLayout(top);

    auto* splitter = new QSplitter(this);
    splitter->setObjectName(QStringLiteral("picSlider"));
    m_trView = new QTreeWidget(splitter);
    m_trView->setObjectName(QStringLiteral("trView"));
    m_trView->setHeaderHidden(true);
    auto* right = new QWidget(splitter);
    auto* rightLayout = new QVBoxLayout(right);
    rightLayout->setContentsMargins(0, 0, 0, 0);
    m_lvFiles = new QTreeWidget(right);
    m_lvFiles->setObjectName(QStringLiteral("lvFiles"));
    m_lvFiles->setColumnCount(2);
    m_lvFiles->setRootIsDecorated(false);
    // The files come in the list's own order, which is the first column ascending; a column
    // click sorts them again.
    m_sort = std::make_unique<TextColumnSort>(m_lvFiles, 0);
    m_lvFiles->header()->setStretchLastSection(false);
    m_lvFiles->header()->setSectionResizeMode(0, QHeaderView::Stretch);
    m_lvFiles->header()->setSectionResizeMode(1, QHeaderView::ResizeToContents);
    m_txtNoFiles = new QLabel(QStringLiteral("Файлов нет"), right);
    m_txtNoFiles->setObjectName(QStringLiteral("txtNoFiles"));
    m_txtNoFiles->setAlignment(Qt::AlignCenter);
    rightLayout->addWidget(m_lvFiles, 1);
    rightLayout->addWidget(m_txtNoFiles, 1);
    splitter->setStretchFactor(1, 2);
    layout->addWidget(splitter, 1);

    auto* comments = new QFormLayout;
    const EditRow dirRow =
        addEditRow(comments, this, QStringLiteral("Комментарий к папке:"), QStringLiteral("txtCommentDir"),
                   QStringLiteral("cmdMakeChangeDir"), 50);
    const EditRow fileRow =
        addEditRow(comments, this, QStringLiteral("Комментарий к файлу:"), QStringLiteral("txtCommentFile"),
                   QStringLiteral("cmdMakeChangeFile"), 50);
    m_txtCommentDir = dirRow.field;
    m_cmdMakeChangeDir = dirRow.save;
    m_txtCommentFile = fileRow.field;
    m_cmdMakeChangeFile = fileRow.save;
    layout->addLayout(comments);

    auto* bottom = new QHBoxLayout;
    bottom->addWidget(new QLabel(QStringLiteral("Объем файлов в списке:"), this));
    m_lblCDSpace = new QLabel(this);
    m_lblCDSpace->setObjectName(QStringLiteral("lblCDSpace"));
    bottom->addWidget(m_lblCDSpace);
    bottom->addStretch(1);
    m_buttons = addButtonRow(bottom, this,
                             {QStringLiteral("Закрыть"), QStringLiteral("Создать список"),
                              QStringLiteral("Удалить список"), QStringLiteral("Пересоздать список")},
                             {1, 2, 3, 0});
    layout->addLayout(bottom);

    connect(m_buttons[0], &QPushButton::clicked, this, &QDialog::reject);
    connect(m_buttons[1], &QPushButton::clicked, this, &frmFileList::cmdCreate);
    connect(m_buttons[2], &QPushButton::clicked, this, &frmFileList::deleteListAsk);
    connect(m_buttons[3], &QPushButton::clicked, this, &frmFileList::recreateListAsk);
    connect(m_cmbCountCD, &QComboBox::activated, this, &frmFileList::cmbCountCD_Click);
    connect(m_trView, &QTreeWidget::itemClicked, this,
            [this](QTreeWidgetItem* item) { selectFolder(item->data(0, Qt::UserRole).toInt()); });
    connect(m_lvFiles, &QTreeWidget::itemClicked, this,
            [this](QTreeWidgetItem* item) { selectFile(item->text(0)); });
    connect(m_lvFiles, &QTreeWidget::itemDoubleClicked, this, &frmFileList::lvFiles_DblClick);
    connect(&m_copy, &QFutureWatcher<ExtractedFile>::finished, this, &frmFileList::copied);
    connect(m_cmdMakeChangeDir, &QPushButton::clicked, this, &frmFileList::cmdMakeChangeDir);
    connect(m_cmdMakeChangeFile, &QPushButton::clicked, this, &frmFileList::cmdMakeChangeFile);
    connect(m_txtCommentDir, &QLineEdit::returnPressed, this, &frmFileList::cmdMakeChangeDir);
    connect(m_txtCommentFile, &QLineEdit::returnPressed, this, &frmFileList::cmdMakeChangeFile);
    m_cmbCountCD->setCurrentIndex(0);
    cmbCountCD_Click();
}

frmFileList::~frmFileList()
{
    m_stopCopy = true;
    m_copy.waitForFinished();
}

void frmFileList::setCommentControls(bool dir, bool file)
{
    m_txtCommentDir->setEnabled(dir);
    m_cmdMakeChangeDir->setEnabled(dir);
    m_txtCommentFile->setEnabled(file);
    m_cmdMakeChangeFile->setEnabled(file);
}

void frmFileList::cmbCountCD_Click()
{
    WaitCursor hourglass;
    const int slot = std::max(0, m_cmbCountCD->currentIndex());
    m_ctx.CurrentDiscID = m_ctx.DiscIDSlots[static_cast<std::size_t>(slot)];
    if (m_ctx.CurrentDiscID.isEmpty()) {
        m_buttons[1]->setEnabled(true);
        m_buttons[2]->setEnabled(false);
        m_buttons[3]->setEnabled(false);
        m_trView->hide();
        m_lvFiles->hide();
        m_txtNoFiles->hide();
        m_txtCommentDir->clear();
        m_txtCommentFile->clear();
        setCommentControls(false, false);
        m_lblCDSpace->setText(QStringLiteral("~0 Мб"));
        return;
    }
    m_buttons[1]->setEnabled(false);
    m_buttons[2]->setEnabled(true);
    m_buttons[3]->setEnabled(true);
    if (!buildTree()) {
        return;
    }
    selectFolder(0);
    m_lblCDSpace->setText(listVolumeText(m_contents.sizes));
}

bool frmFileList::buildTree()
{
    m_trView->clear();
    const StoredFileList list = storedList();
    m_contents = list.exists() ? list.read() : StoredFileList::Contents();
    const std::optional<QList<FileTreeNode>> nodes =
        list.exists() ? BuildTree(m_contents.folders) : std::optional<QList<FileTreeNode>>();
    if (!nodes) {
        setCommentControls(false, false);
        m_trView->hide();
        m_lvFiles->hide();
        m_ctx.prompter().message(
            QStringLiteral("ВНИМАНИЕ!\n\nПроизошла ошибка при создании списка файлов! Необходимо "
                           "повторно произвести сканирование диска."),
            MessageStyle::Exclamation);
        return false;
    }
    m_nodes = *nodes;
    // The style makes a new icon (reading its pictures) at every call: one of each serves all.
    const QIcon discIcon = style()->standardIcon(QStyle::SP_DriveCDIcon);
    const QIcon folderIcon = style()->standardIcon(QStyle::SP_DirIcon);
    QList<QTreeWidgetItem*> items;
    items.reserve(m_nodes.size());
    for (int i = 0; i < m_nodes.size(); ++i) {
        const FileTreeNode& node = m_nodes[i];
        auto* item =
            node.parent < 0 ? new QTreeWidgetItem(m_trView) : new QTreeWidgetItem(items[node.parent]);
        item->setText(0, node.text);
        item->setData(0, Qt::UserRole, i);
        item->setIcon(0, node.image == 2 ? discIcon : folderIcon);
        items.append(item);
    }
    if (m_nodes.isEmpty()) {
        m_trView->addTopLevelItem(new QTreeWidgetItem(QStringList{QStringLiteral("Файлов нет!")}));
    }
    m_trView->show();
    m_lvFiles->show();
    setCommentControls(true, false);
    return true;
}

StoredFileList frmFileList::storedList() const
{
    return StoredFileList(m_ctx.FilesDBPath, m_ctx.CurrentDiscID);
}

QString frmFileList::currentFolderKey() const
{
    const QTreeWidgetItem* item = m_trView->currentItem();
    if (!item || !item->data(0, Qt::UserRole).isValid()) {
        return QStringLiteral("\\");
    }
    return folderKey(m_nodes, item->data(0, Qt::UserRole).toInt());
}

void frmFileList::selectFolder(int node)
{
    if (node < 0 || node >= m_nodes.size()) {
        return;
    }
    const QList<QTreeWidgetItem*> found =
        m_trView->findItems(m_nodes[node].text, Qt::MatchExactly | Qt::MatchRecursive);
    for (QTreeWidgetItem* item : found) {
        if (item->data(0, Qt::UserRole).toInt() == node) {
            m_trView->setCurrentItem(item);
        }
    }
    m_txtCommentFile->clear();
    FillFileList(folderKey(m_nodes, node));
    if (m_lvFiles->topLevelItemCount() > 0) {
        m_lvFiles->setCurrentItem(m_lvFiles->topLevelItem(0));
        selectFile(m_lvFiles->topLevelItem(0)->text(0));
    }
}

void frmFileList::FillFileList(const QString& path)
{
    m_lvFiles->clear();
    const StoredFileList list = storedList();
    m_txtCommentDir->setText(list.folderComment(path));
    static const QStyle::StandardPixmap icons[] = {QStyle::SP_FileIcon,     QStyle::SP_FileIcon,
                                                   QStyle::SP_ComputerIcon, QStyle::SP_DriveFDIcon,
                                                   QStyle::SP_FileIcon,     QStyle::SP_FileDialogDetailedView,
                                                   QStyle::SP_MediaPlay,    QStyle::SP_MediaVolume,
                                                   QStyle::SP_DriveFDIcon,  QStyle::SP_FileDialogContentsView,
                                                   QStyle::SP_FileIcon,     QStyle::SP_FileIcon,
                                                   QStyle::SP_DirLinkIcon};
    std::array<QIcon, std::size(icons)> iconOf;
    for (const StoredFileList::File& file : m_contents.files(path)) {
        auto* item = new QTreeWidgetItem(m_lvFiles, {file.name, file.size});
        QIcon& icon = iconOf[static_cast<std::size_t>(fileImage(file.name))];
        if (icon.isNull()) {
            icon = style()->standardIcon(icons[fileImage(file.name)]);
        }
        item->setIcon(0, icon);
    }
    m_sort->apply();
    const bool any = m_lvFiles->topLevelItemCount() > 0;
    m_lvFiles->setVisible(any);
    m_txtNoFiles->setVisible(!any);
    m_txtCommentFile->setEnabled(any);
    m_cmdMakeChangeFile->setEnabled(any);
    m_lvFiles->setHeaderLabels({QStringLiteral("Файлов: ") + QString::number(m_lvFiles->topLevelItemCount()),
                                QStringLiteral("Размер (Кб)")});
}

void frmFileList::selectFile(const QString& name)
{
    m_txtCommentFile->setText(storedList().fileComment(currentFolderKey(), name));
}

void frmFileList::cmdMakeChangeDir()
{
    m_txtCommentDir->setText(CleanText(m_txtCommentDir->text()));
    const QString path = currentFolderKey();
    if (!storedList().setComment(path, path, m_txtCommentDir->text())) {
        m_ctx.prompter().message(QStringLiteral("Необходимо пересоздать структуру диска!"),
                                 MessageStyle::Exclamation);
        m_txtCommentDir->clear();
        return;
    }
    m_ctx.prompter().message(QStringLiteral("Комментарий к папке '") + m_trView->currentItem()->text(0) +
                                 QStringLiteral("' успешно изменен."),
                             MessageStyle::Information);
}

void frmFileList::cmdMakeChangeFile()
{
    m_txtCommentFile->setText(CleanText(m_txtCommentFile->text()));
    const QString name = m_lvFiles->currentItem() ? m_lvFiles->currentItem()->text(0) : QString();
    if (name.isEmpty() || !storedList().setComment(currentFolderKey(), name, m_txtCommentFile->text())) {
        m_ctx.prompter().message(QStringLiteral("Необходимо пересоздать структуру диска!"),
                                 MessageStyle::Exclamation);
        m_txtCommentDir->clear();
        return;
    }
    m_ctx.prompter().message(QStringLiteral("Комментарий к файлу '") + name +
                                 QStringLiteral("' успешно изменен."),
                             MessageStyle::Information);
}

void frmFileList::cmdCreate()
{
    m_ctx.DialogDone = false;
    {
        frmFileListOption options(m_ctx, m_number, m_cmbCountCD->currentIndex() + 1, this);
        m_ctx.prompter().showModal(options);
    }
    if (!m_ctx.DialogDone) {
        return;
    }
    m_ctx.DialogDone = false;
    cmbCountCD_Click();
}

void frmFileList::DeleteList()
{
    const int slot = m_cmbCountCD->currentIndex() + 1;
    underFaultHandler(m_ctx, QStringLiteral("frmFileList, DeleteList()"),
                      [&] { DeleteFileList(m_ctx, m_number, slot, m_ctx.CurrentDiscID); });
}

DiscListSteps frmFileList::listSteps()
{
    return {[this] { DeleteList(); }, [this] { cmbCountCD_Click(); }, [this] { cmdCreate(); }};
}

void frmFileList::deleteListAsk()
{
    changeListAsk(m_ctx.prompter(), ListChange::Delete,
                  QStringLiteral("Вы действительно хотите удалить информация о структуре ") +
                      m_cmbCountCD->currentText() + QStringLiteral("-го диска № ") +
                      QString::number(m_number) + u'?',
                  listSteps());
}

void frmFileList::recreateListAsk()
{
    changeListAsk(m_ctx.prompter(), ListChange::Recreate,
                  QStringLiteral("Текущий список файлов будет удален! Продолжить?"), listSteps());
}

void frmFileList::lvFiles_DblClick()
{
    underFaultHandler(m_ctx, QStringLiteral("frmFileList, lvFiles_DblClick()"),
                      [this] { openSelectedFile(); });
}

void frmFileList::openSelectedFile()
{
    const QString name = m_lvFiles->currentItem() ? m_lvFiles->currentItem()->text(0) : QString();
    const QString drive = m_ctx.ini().read(QStringLiteral("Option"), QStringLiteral("Drive"), 4096).trimmed();
    VolumeInfo volume;
    const QString kind = drive.isEmpty()
                             ? QString()
                             : GetDiskIDcheck(m_ctx, drive, frmSelectCategory::chooser(m_ctx, this), &volume);
    if (kind != u"PcCD" || SerialToID(volume.serial) != m_ctx.CurrentDiscID || name.isEmpty()) {
        m_ctx.prompter().message(
            QStringLiteral("Вставьте диск № ") + QString::number(m_number) +
                QStringLiteral(" в устройство для чтения компакт-дисков и повторите операцию."),
            MessageStyle::Exclamation);
        return;
    }
    QString folder = currentFolderKey();
    folder.replace(u'\\', u'/');
    const bool start = m_ctx.ini().number(QStringLiteral("Option"), QStringLiteral("FilesAction"), 5) == 1;
    const QString mounted = mountPointOf(drive);
    if (mounted.isEmpty()) {
        // A disc image, or a disc the system has not mounted: read where it lies.
        const QString inFolder = folder.mid(1); // "DOCS/OLD/", empty at the root
        openCopyOf(drive, inFolder + name, start);
        return;
    }
    const QString file = QDir(mounted + folder).filePath(name);
    m_ctx.prompter().openUrl(QUrl::fromLocalFile(start ? file : QFileInfo(file).path()));
}

// The copy is made off the window's thread; the window opens it when it is done. One copy at
// a time: a double click meanwhile is passed by.
void frmFileList::openCopyOf(const QString& drive, const QString& file, bool openFile)
{
    if (m_copy.isRunning()) {
        return;
    }
    if (!m_copies) {
        m_copies = std::make_unique<QTemporaryDir>(QDir::temp().filePath(QStringLiteral("vinora-")));
    }
    // Each copy in a folder of its own: files of one name from two folders of the disc.
    const QString folder = QDir(m_copies->path()).filePath(QString::number(++m_copiesMade));
    if (!m_copies->isValid() || !QDir().mkpath(folder)) {
        m_ctx.prompter().message(QStringLiteral("Не удалось создать временную папку для файла '") +
                                     file.section(u'/', -1) + QStringLiteral("'."),
                                 MessageStyle::Exclamation);
        return;
    }
    const qint64 room = QStorageInfo(folder).bytesAvailable();
    m_openCopiedFile = openFile;
    m_copyCursor.emplace();
    m_copyName = file.section(u'/', -1);
    m_copy.setFuture(QtConcurrent::run([this, drive, file, folder, room] {
        try {
            return extractDiscFile(drive, file, folder, room, [this] { return m_stopCopy.load(); });
        } catch (const std::exception&) {
            return ExtractedFile{ExtractedFile::Status::Unreadable, {}, 0}; // out of memory on a damaged disc
        }
    }));
}

void frmFileList::copied()
{
    m_copyCursor.reset();
    const ExtractedFile copy = m_copy.result();
    const QString& name = m_copyName;
    using Status = ExtractedFile::Status;
    switch (copy.status) {
    case Status::Done:
        m_ctx.prompter().openUrl(
            QUrl::fromLocalFile(m_openCopiedFile ? copy.path : QFileInfo(copy.path).path()));
        return;
    case Status::Cancelled:
        return;
    case Status::NotFound:
        m_ctx.prompter().message(QStringLiteral("Файл '") + name +
                                     QStringLiteral("' на диске не найден. Возможно, список файлов "
                                                    "устарел: пересоздайте его."),
                                 MessageStyle::Exclamation);
        return;
    case Status::TooLarge:
        m_ctx.prompter().message(
            QStringLiteral("Файл '") + name +
                QStringLiteral("' слишком велик: для него нет места во временной папке ") +
                QDir::toNativeSeparators(QDir::tempPath()) + u'.',
            MessageStyle::Exclamation);
        return;
    case Status::Unreadable:
        m_ctx.prompter().message(QStringLiteral("Ошибка чтения диска! Файл '") + name +
                                     QStringLiteral("' не удалось прочитать."),
                                 MessageStyle::Exclamation);
        return;
    case Status::CannotWrite:
        m_ctx.prompter().message(QStringLiteral("Не удалось записать файл '") + name +
                                     QStringLiteral("' во временную папку ") +
                                     QDir::toNativeSeparators(QDir::tempPath()) + u'.',
                                 MessageStyle::Exclamation);
        return;
    }
}

void frmFileList::showDisc(int k)
{
    if (chooseDisc(m_cmbCountCD, k)) {
        cmbCountCD_Click();
    }
}

bool frmFileList::showFolder(const QString& path)
{
    for (int node = 0; node < m_nodes.size(); ++node) {
        if (folderKey(m_nodes, node) == path) {
            selectFolder(node);
            m_trView->scrollToItem(m_trView->currentItem());
            return true;
        }
    }
    return false;
}

bool frmFileList::showFile(const QString& name)
{
    for (int i = 0; i < m_lvFiles->topLevelItemCount(); ++i) {
        QTreeWidgetItem* item = m_lvFiles->topLevelItem(i);
        if (item->text(0) != name) {
            continue;
        }
        m_lvFiles->setCurrentItem(item);
        for (int column = 0; column < m_lvFiles->columnCount(); ++column) {
            QFont font = item->font(column);
            font.setBold(true);
            item->setFont(column, font);
        }
        selectFile(name);
        m_lvFiles->scrollToItem(item);
        return true;
    }
    return false;
}

QStringList frmFileList::treeTexts() const
{
    QStringList texts;
    for (int i = 0; i < m_nodes.size(); ++i) {
        texts.append(m_nodes[i].parent < 0 ? m_nodes[i].text
                                           : texts[m_nodes[i].parent] + u'/' + m_nodes[i].text);
    }
    return texts;
}

QStringList frmFileList::fileNames() const
{
    QStringList names;
    for (int i = 0; i < m_lvFiles->topLevelItemCount(); ++i) {
        names.append(m_lvFiles->topLevelItem(i)->text(0));
    }
    return names;
}

QString frmFileList::volumeText() const
{
    return m_lblCDSpace->text();
}

} // namespace vinora
