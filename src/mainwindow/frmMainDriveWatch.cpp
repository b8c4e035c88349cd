// The main window's watch of the chosen drive: the sign of the disc in it, binding and
// unbinding, the drive selector and disc images, the change of a disc's category.
#include "catalogue/Numbering.h"
#include "catalogue/frmSelectCD.h"
#include "frame/AppContext.h"
#include "frame/FaultLog.h"
#include "mainwindow/DashboardPictures.h"
#include "mainwindow/frmMain.h"
#include "recognition/DiscIdentity.h"
#include "recognition/DriveChoice.h"
#include "recognition/DriveWatch.h"
#include "recognition/Drives.h"
#include "recognition/frmSelectCategory.h"
#include "store/LocalDatabase.h"
#include "ui/ClickableLabel.h"

#include <QApplication>
#include <QComboBox>
#include <QFileInfo>
#include <QtConcurrent/QtConcurrentRun>

namespace vinora {
namespace {

const QString kOption = QStringLiteral("Option");

// Where a fault of the binding link of a category's block is reported from.
QString shareLinkPlace(Category category)
{
    static const char* const places[] = {"frmMain, lblShareAD_Click()", "frmMain, lblSharePC_Click()",
                                         "frmMain, lblShareDVD_Click()"};
    return QString::fromLatin1(places[static_cast<int>(category)]);
}

} // namespace

// ======================================================================================
// Drive watch
// ======================================================================================

void frmMain::ResetDiscSigns()
{
    for (const Category category : allCategories()) {
        CategoryBlock& b = block(category);
        b.blink = false;
        b.newSign->hide();
        b.newLabel->hide();
        b.newSign->setPixmap(discPicture(DiscPicture::Unknown));
        b.newLabel->setText(unknownDiscText());
        b.shareLink->setText(QStringLiteral("Привязать"));
        b.shareLink->hide();
        b.shareSign->hide();
    }
}

void frmMain::tmrCheckCD_Timer()
{
    // One query at a time: a slow drive skips ticks rather than piling them up. The watch
    // goes on while a modal window is open, so the signs stay current behind it.
    if (m_volumeQuery.isRunning()) {
        return;
    }
    const QString drive = m_ctx.ini().read(kOption, QStringLiteral("Drive"), 4096).trimmed();
    if (drive.isEmpty()) {
        return;
    }
    m_volumeQuery.setFuture(QtConcurrent::run([drive] { return readVolumeInfo(drive); }));
}

void frmMain::volumeQueryFinished()
{
    if (m_ctx.ExternalDBOpen || !m_tmrCheckCD.isActive()) {
        return; // the watch was stopped while the drive was asked
    }
    underFaultHandler(m_ctx, QStringLiteral("frmMain, tmrCheckCD_Timer()"), [this] {
        const VolumeInfo volume = m_volumeQuery.result();
        // A tick never puts the category question over a modal window that is open (another
        // dialog, or the question of an earlier tick): a disc that needs it is left alone
        // until a tick after that window has closed. Every other disc is shown at once.
        if (QApplication::activeModalWidget() != nullptr && categoryMustBeAsked(m_ctx, volume)) {
            return;
        }
        const QString kind = kindOfVolume(m_ctx, volume, frmSelectCategory::chooser(m_ctx, this));
        const std::optional<Category> category = categoryOfKind(kind);
        if (!category) {
            m_lastDriveDiscID.clear();
            ResetDiscSigns();
            setStatusPicture(3, discPicture(DiscPicture::NoDisc, 16));
            return;
        }
        if (*category != Category::Audio) {
            setStatusPicture(3, discPicture(DiscPicture::Present, 16));
        }
        m_driveDiscID = SerialToID(volume.serial);
        m_ctx.LastDiscKind = kind;
        if (m_driveDiscID == m_lastDriveDiscID) {
            return;
        }
        m_lastDriveDiscID = m_driveDiscID;
        if (m_driveDiscID.isEmpty()) {
            return;
        }
        showDiscInDrive(*category, m_driveDiscID);
    });
}

void frmMain::showDiscInDrive(Category category, const QString& id)
{
    if (category == Category::Audio) {
        setStatusPicture(3, discPicture(DiscPicture::Present, 16));
    }
    std::optional<BoundDisc> bound;
    {
        Db db(m_ctx.MainDBPath);
        bound = findBoundDisc(db, category, id);
    }
    CategoryBlock& b = block(category);
    b.blink = true;
    if (bound) {
        b.shareSign->show();
        b.shareLink->setText(QStringLiteral("Удалить привязку"));
        b.shareLink->setStyleSheet(QStringLiteral("color: #d32f2f; text-decoration: underline;"));
        b.shareLink->setEnabled(true);
        b.shareLink->show();
        m_tmrNewCD.startBlinking();
        for (const Category other : allCategories()) {
            if (other != category) {
                block(other).newSign->hide();
                block(other).newLabel->hide();
            }
        }
        b.newSign->setPixmap(discPicture(DiscPicture::Known));
        b.newSign->show();
        b.newLabel->show();
        b.newLabel->setText(boundDiscText(*bound));
        return;
    }
    b.newSign->setPixmap(discPicture(DiscPicture::Unknown));
    if (b.discs->text() != u"0") {
        b.shareSign->show();
        b.shareLink->setText(QStringLiteral("Привязать"));
        b.shareLink->setStyleSheet(QStringLiteral("color: #3d7ad6; text-decoration: underline;"));
        b.shareLink->setEnabled(true);
        b.shareLink->show();
    }
    m_tmrNewCD.startBlinking();
}

void frmMain::tmrNewCD_Timer()
{
    for (const Category category : allCategories()) {
        CategoryBlock& b = block(category);
        if (b.blink) {
            const bool steady = m_tmrNewCD.steady();
            m_tmrNewCD.blink({b.newSign, b.newLabel});
            if (steady) {
                return; // a steady display shows the first category flagged only
            }
        }
    }
}

void frmMain::bindDiscInDrive(Category category, const QString& drive)
{
    m_ctx.CatalogueQueryFilter = QStringLiteral("full") + categoryInfo(category).code;
    {
        frmSelectCD picker(m_ctx, this);
        m_ctx.prompter().showModal(picker);
    }
    m_ctx.CatalogueQueryFilter.clear();
    if (m_ctx.PickedDisc.isEmpty()) {
        return;
    }
    const int number = m_ctx.PickedDisc.chopped(2).toInt();
    const int slot = m_ctx.PickedDisc.right(1).toInt();
    underFaultHandler(m_ctx, shareLinkPlace(category), [&] {
        const QString id = GetDiskID(m_ctx, drive, frmSelectCategory::chooser(m_ctx, this));
        const Db db(m_ctx.MainDBPath);
        const QString numberText = QString::number(number);
        if (!bindingAt(db, category, number, slot).isEmpty()) {
            m_ctx.prompter().message(QStringLiteral("Диск № ") + numberText +
                                         QStringLiteral(" уже привязан к другому номеру диска!"),
                                     MessageStyle::Exclamation);
        }
        if (const std::optional<int> holder = CheckDiskShare(db, category, id)) {
            m_ctx.prompter().message(QStringLiteral("Этот диск уже привязан к №") + QString::number(*holder) +
                                         u'!',
                                     MessageStyle::Exclamation);
            return;
        }
        const QString where = numberText + QStringLiteral(" (CD") + QString::number(slot) + u')';
        if (m_ctx.prompter().message(
                QStringLiteral("Установить привязку на диск №") + where + QStringLiteral(":\n") +
                    discTitle(db, catalogueKind(category), number).value_or(QString()) + u'?',
                MessageStyle::YesNo) == Answer::Yes) {
            bindDisc(db, category, number, slot, id);
            m_ctx.prompter().message(QStringLiteral("Привязка успешно установлена на диск №") + where,
                                     MessageStyle::Information);
        }
    });
    m_ctx.PickedDisc.clear();
    LoadData();
}

void frmMain::shareLinkClicked(Category category)
{
    const QString drive = m_ctx.ini().read(kOption, QStringLiteral("Drive"), 4096).trimmed();
    if (drive.isEmpty()) {
        return;
    }
    if (block(category).shareLink->text() == u"Привязать") {
        bindDiscInDrive(category, drive);
        return;
    }
    if (block(category).shareLink->text() != u"Удалить привязку") {
        return;
    }
    const Answer answer = m_ctx.prompter().message(
        QStringLiteral("Вы уверены, что хотите удалить привязку с этого диска?"), MessageStyle::YesNo);
    if (answer != Answer::Yes) {
        return;
    }
    underFaultHandler(m_ctx, shareLinkPlace(category), [&] {
        const QString id = GetDiskID(m_ctx, drive, frmSelectCategory::chooser(m_ctx, this));
        Db db(m_ctx.MainDBPath);
        unbindDisc(db, category, id);
    });
    LoadData();
}

void frmMain::LoadDefaultCD()
{
    m_loadingDrives = true;
    m_driveSelector->clear();
    const QStringList drives = GetCDDrives(m_ctx.ini());
    for (const QString& drive : drives) {
        // Images are shown by their file name; the path goes with the item.
        m_driveSelector->addItem(QFileInfo(drive).isFile() ? QFileInfo(drive).fileName() : drive, drive);
        m_driveSelector->setItemData(m_driveSelector->count() - 1, drive, Qt::ToolTipRole);
    }
    m_driveSelector->setEnabled(!drives.isEmpty() && !m_ctx.ExternalDBOpen);
    const QString chosen = chosenDrive(m_ctx.ini(), drives);
    m_driveSelector->setCurrentIndex(static_cast<int>(drives.indexOf(chosen)));
    m_loadingDrives = false;
}

void frmMain::driveChosen(int index)
{
    if (m_loadingDrives || index < 0) {
        return;
    }
    ResetDiscSigns();
    setChosenDrive(m_ctx.ini(), m_driveSelector->itemData(index).toString());
    CheckCD();
}

void frmMain::addDiskImage()
{
    const QString image = askForDiskImage(m_ctx.prompter());
    if (image.isEmpty()) {
        return;
    }
    addVirtualDrive(m_ctx.ini(), image);
    setChosenDrive(m_ctx.ini(), image);
    LoadDefaultCD();
    CheckCD();
}

void frmMain::removeDiskImage()
{
    const QString drive = m_driveSelector->currentData().toString();
    if (!virtualDrives(m_ctx.ini()).contains(drive)) {
        m_ctx.prompter().message(QStringLiteral("Выбранное устройство не является образом диска."),
                                 MessageStyle::Exclamation);
        return;
    }
    removeVirtualDrive(m_ctx.ini(), drive);
    LoadDefaultCD();
    setChosenDrive(m_ctx.ini(), m_driveSelector->currentData().toString());
    CheckCD();
}

void frmMain::changeCategory()
{
    const bool restart = underFaultHandler(m_ctx, QStringLiteral("frmMain, mnuChangeCategory()"), [this] {
        return ChangeDiscCategory(m_ctx, m_driveSelector->currentData().toString(),
                                  frmSelectCategory::chooser(m_ctx, this), [this] { m_tmrCheckCD.stop(); });
    });
    if (restart) {
        m_tmrCheckCD.start();
        CheckCD();
    }
}

} // namespace vinora
