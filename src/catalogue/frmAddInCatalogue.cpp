#include "catalogue/frmAddInCatalogue.h"

#include "catalogue/DictionaryTable.h"
#include "catalogue/SoundFormats.h"
#include "frame/AppContext.h"
#include "frame/FaultLog.h"
#include "frame/TextRules.h"
#include "recognition/Drives.h"
#include "recognition/Medium.h"
#include "store/Db.h"
#include "store/Schema.h"
#include "ui/KeyFilter.h"
#include "ui/WaitCursor.h"

#include <QComboBox>
#include <QCompleter>
#include <QDate>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QToolButton>
#include <QVBoxLayout>

namespace vinora {
namespace {

const char* const kAddCaptions[] = {"Добавление Аудио диска", "Добавление Компьютерного диска",
                                    "Добавление DVD диска"};
const char* const kChangeCaptions[] = {"Изменение информации Аудио диска",
                                       "Изменение информации Компьютерного диска",
                                       "Изменение информации DVD диска"};
const char* const kFormNames[] = {"frmAddInCatalogueAudio", "frmAddInCataloguePC", "frmAddInCatalogueDVD"};
const char* const kDictionaryFields[] = {"txtStyle", "txtDescription", "txtGenre"};

QCompleter* inlineCompleter(const QStringList& words, QObject* parent)
{
    auto* completer = new QCompleter(words, parent);
    completer->setCaseSensitivity(Qt::CaseInsensitive);
    completer->setCompletionMode(QCompleter::InlineCompletion);
    return completer;
}

// The distinct non-empty words of a column, for completion.
QStringList completionWords(QStringList words)
{
    words.removeAll(QString());
    words.removeDuplicates();
    return words;
}

} // namespace

QString frmAddInCatalogue::addCaption(Category category)
{
    return QString::fromUtf8(kAddCaptions[static_cast<int>(category)]);
}

frmAddInCatalogue::frmAddInCatalogue(AppContext& ctx, Category category, Mode mode, int number,
                                     QWidget* parent)
    : QDialog(parent), m_ctx(ctx), m_kind(catalogueKind(category)), m_mode(mode)
{
    const int index = static_cast<int>(category);
    setObjectName(QString::fromLatin1(kFormNames[index]));
    setWindowTitle(mode == Mode::Add ? QStringLiteral("Добавление диска")
                                     : QStringLiteral("Изменение диска"));
    auto* layout = new QVBoxLayout(this);
    auto* caption =
        new QLabel(QString::fromUtf8(mode == Mode::Add ? kAddCaptions[index] : kChangeCaptions[index]), this);
    caption->setObjectName(QStringLiteral("lblCDsCount0"));
    QFont bold = caption->font();
    bold.setBold(true);
    caption->setFont(bold);
    layout->addWidget(caption);

    auto* form = new QFormLayout;
    m_lblNumber = new QLabel(QString::number(number), this);
    m_lblNumber->setObjectName(QStringLiteral("lblNumber"));
    form->addRow(QStringLiteral("Номер:"), m_lblNumber);
    m_txtName = newLine(QStringLiteral("txtName"));
    form->addRow(m_kind.nameCaption + u':', m_txtName);
    if (m_kind.hasAlbum) {
        m_txtAlbum = newLine(QStringLiteral("txtAlbum"));
        form->addRow(QStringLiteral("Альбом:"), m_txtAlbum);
    }
    m_txtYear = newLine(QStringLiteral("txtYear"));
    form->addRow(QStringLiteral("Год:"), withSpinner(m_txtYear, spinYear));
    m_txtCDs = newLine(QStringLiteral("txtCDs"));
    KeyFilter::install(m_txtCDs, DiscCountKeys);
    form->addRow(QStringLiteral("Дисков:"), withSpinner(m_txtCDs, spinDiscs));
    if (category == Category::Audio) {
        m_cmbCountCD = new QComboBox(this);
        m_cmbCountCD->setObjectName(QStringLiteral("cmbCountCD"));
        form->addRow(QStringLiteral("Диск:"), m_cmbCountCD);
        m_txtTrack = newLine(QStringLiteral("txtTrack"));
        form->addRow(QStringLiteral("Треков:"), withSpinner(m_txtTrack, spinTracks));
        m_txtTime = newLine(QStringLiteral("txtTime"));
        form->addRow(QStringLiteral("Время:"), withSpinner(m_txtTime, spinTime));
        connect(m_cmbCountCD, &QComboBox::activated, this, &frmAddInCatalogue::cmbCountCD_Click);
        connect(m_txtTrack, &QLineEdit::textChanged, this, &frmAddInCatalogue::storeDiscValues);
        connect(m_txtTime, &QLineEdit::textChanged, this, &frmAddInCatalogue::storeDiscValues);
    }
    if (category == Category::Computer) {
        m_txtDescription = newLine(QStringLiteral("txtDescription2"));
        form->addRow(QStringLiteral("Описание:"), m_txtDescription);
    }
    if (category == Category::Dvd) {
        m_txtDescription = newLine(QStringLiteral("txtDescription"));
        form->addRow(QStringLiteral("Описание:"), m_txtDescription);
        m_txtTime = newLine(QStringLiteral("txtTime"));
        form->addRow(QStringLiteral("Время, мин:"), m_txtTime);
        KeyFilter::install(m_txtTime, DigitKeys);
        m_cmbZone = new QComboBox(this);
        m_cmbZone->setObjectName(QStringLiteral("cmbZone"));
        for (int zone = 0; zone <= 8; ++zone) {
            m_cmbZone->addItem(QString::number(zone));
        }
        form->addRow(QStringLiteral("Зона:"), m_cmbZone);
    }
    m_txtDictionary = newLine(QString::fromLatin1(kDictionaryFields[index]));
    form->addRow(m_kind.dictionaryTable + u':', m_txtDictionary);
    if (category == Category::Dvd) {
        m_lvSoundFormat = new QListWidget(this);
        m_lvSoundFormat->setObjectName(QStringLiteral("lvSoundFormat"));
        form->addRow(QStringLiteral("Звук:"), m_lvSoundFormat);
    }
    layout->addLayout(form);

    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    buttons->button(QDialogButtonBox::Ok)->setObjectName(QStringLiteral("imgButton0"));
    buttons->button(QDialogButtonBox::Ok)->setAutoDefault(false);
    buttons->button(QDialogButtonBox::Cancel)->setAutoDefault(false);
    if (category == Category::Audio) {
        m_cmbDrive = new QComboBox(this);
        m_cmbDrive->setObjectName(QStringLiteral("cmbDrive"));
        m_cmdInfo = new QPushButton(QStringLiteral("С диска..."), this);
        m_cmdInfo->setObjectName(QStringLiteral("imgButton2"));
        m_cmdInfo->setAutoDefault(false);
        auto* driveRow = new QHBoxLayout;
        driveRow->addWidget(m_cmbDrive, 1);
        driveRow->addWidget(m_cmdInfo);
        layout->addLayout(driveRow);
        connect(m_cmdInfo, &QPushButton::clicked, this, &frmAddInCatalogue::cmdInfo);
    }
    layout->addWidget(buttons);
    connect(buttons, &QDialogButtonBox::accepted, this, &frmAddInCatalogue::cmdAdd);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    connect(m_txtCDs, &QLineEdit::textChanged, this, &frmAddInCatalogue::txtCDs_Change);

    // FormLoad: the lists for completion, the year, the drives.
    underFaultHandler(m_ctx, objectName() + QStringLiteral(", FormLoad()"), [&] {
        const Db db(m_ctx.MainDBPath, Db::Access::ReadOnly);
        const QString table = quoted(m_kind.info().table);
        QStringList names = completionWords(db.texts(QStringLiteral("SELECT Название FROM ") + table));
        if (m_kind.hasAlbum) {
            names += completionWords(db.texts(QStringLiteral("SELECT Альбом FROM ") + table));
            names.removeDuplicates();
            m_txtAlbum->setCompleter(inlineCompleter(names, this));
        }
        m_txtName->setCompleter(inlineCompleter(names, this));
        m_txtDictionary->setCompleter(inlineCompleter(
            completionWords(DictionaryTable(db, m_kind.dictionaryTable, m_kind.dictionaryKey).names()),
            this));
        if (m_lvSoundFormat) {
            for (const SoundFormat& format : soundFormatDictionary(db)) {
                auto* item = new QListWidgetItem(format.name, m_lvSoundFormat);
                item->setData(Qt::UserRole, format.code);
                item->setFlags(item->flags() | Qt::ItemIsUserCheckable);
                item->setCheckState(Qt::Unchecked);
            }
        }
        if (m_mode == Mode::Change) {
            m_disc = readDisc(db, m_kind, number);
            m_oldDiscCount = m_disc.discs;
            m_ctx.OldDiscCount = static_cast<qint16>(m_disc.discs);
        } else {
            m_disc.number = number;
            m_disc.year = m_ctx.clock().today().toString(QStringLiteral("yyyy"));
        }
    });
    if (m_cmbDrive) {
        const QStringList drives = GetCDDrives(m_ctx.ini());
        for (const QString& drive : drives) {
            m_cmbDrive->addItem(drive);
        }
        if (drives.isEmpty()) {
            m_cmdInfo->setEnabled(false);
            m_cmbDrive->addItem(QStringLiteral("---"));
            m_cmbDrive->setEnabled(false);
        } else {
            m_cmbDrive->setCurrentIndex(static_cast<int>(drives.indexOf(chosenDrive(m_ctx.ini(), drives))));
        }
    }
    showDisc(m_disc);
    for (QLineEdit* field : findChildren<QLineEdit*>()) {
        field->installEventFilter(this);
    }
}

QLineEdit* frmAddInCatalogue::newLine(const QString& objectName)
{
    auto* field = new QLineEdit(this);
    field->setObjectName(objectName);
    return field;
}

QWidget* frmAddInCatalogue::withSpinner(QLineEdit* field, QString (*spin)(const QString&, bool))
{
    auto* box = new QWidget(this);
    auto* row = new QHBoxLayout(box);
    row->setContentsMargins(0, 0, 0, 0);
    row->addWidget(field, 1);
    for (const bool up : {false, true}) {
        auto* arrow = new QToolButton(box);
        arrow->setArrowType(up ? Qt::UpArrow : Qt::DownArrow);
        arrow->setObjectName(QStringLiteral("ud") + field->objectName().mid(3) +
                             (up ? QStringLiteral("Up") : QStringLiteral("Down")));
        connect(arrow, &QToolButton::clicked, field,
                [field, spin, up] { field->setText(spin(field->text(), up)); });
        row->addWidget(arrow);
    }
    field->setProperty("spin", QVariant::fromValue(reinterpret_cast<quintptr>(spin)));
    return box;
}

void frmAddInCatalogue::showDisc(const DiscRecord& disc)
{
    m_loading = true;
    m_txtName->setText(disc.name);
    if (m_txtAlbum) {
        m_txtAlbum->setText(disc.album);
    }
    m_txtYear->setText(disc.year);
    m_txtCDs->setText(QString::number(disc.discs));
    m_txtDictionary->setText(disc.dictionaryName);
    if (m_txtDescription) {
        m_txtDescription->setText(disc.description);
    }
    if (m_kind.category == Category::Dvd) {
        m_txtTime->setText(disc.dvdTime);
        m_cmbZone->setCurrentText(disc.zone.isEmpty() ? QStringLiteral("5") : disc.zone);
        const QStringList codes = soundFormatCodes(disc.soundFormats);
        for (int i = 0; i < m_lvSoundFormat->count(); ++i) {
            QListWidgetItem* item = m_lvSoundFormat->item(i);
            item->setCheckState(codes.contains(item->data(Qt::UserRole).toString()) ? Qt::Checked
                                                                                    : Qt::Unchecked);
        }
    }
    m_loading = false;
    txtCDs_Change();
    m_txtName->selectAll();
    m_txtDictionary->selectAll();
}

void frmAddInCatalogue::txtCDs_Change()
{
    if (!m_cmbCountCD) {
        return;
    }
    const int count = discCount(m_txtCDs->text());
    if (m_txtCDs->text() != QString::number(count) && !m_txtCDs->text().isEmpty()) {
        m_txtCDs->setText(QString::number(count));
        return;
    }
    m_cmbCountCD->clear();
    for (int k = 1; k <= count; ++k) {
        m_cmbCountCD->addItem(QString::number(k));
    }
    m_cmbCountCD->setCurrentIndex(0);
    m_cmbCountCD->setEnabled(count > 1);
    cmbCountCD_Click();
}

void frmAddInCatalogue::cmbCountCD_Click()
{
    const int k = std::max(0, m_cmbCountCD->currentIndex());
    m_loading = true;
    m_txtTrack->setText(m_disc.tracks[k]);
    m_txtTime->setText(m_disc.times[k]);
    m_loading = false;
}

void frmAddInCatalogue::storeDiscValues()
{
    if (m_loading || !m_cmbCountCD) {
        return;
    }
    const int k = std::max(0, m_cmbCountCD->currentIndex());
    m_disc.tracks[k] = m_txtTrack->text().left(2);
    m_disc.times[k] = m_txtTime->text().left(5);
}

bool frmAddInCatalogue::eventFilter(QObject* watched, QEvent* event)
{
    auto* field = qobject_cast<QLineEdit*>(watched);
    if (field && event->type() == QEvent::KeyPress) {
        const auto* key = static_cast<QKeyEvent*>(event);
        if (key->key() == Qt::Key_Return || key->key() == Qt::Key_Enter) {
            if (field == m_txtDictionary) {
                cmdAdd();
            } else {
                focusNextChild();
            }
            return true;
        }
        const QVariant spin = field->property("spin");
        if (spin.isValid() && (key->key() == Qt::Key_Up || key->key() == Qt::Key_Down)) {
            const auto function = reinterpret_cast<QString (*)(const QString&, bool)>(spin.value<quintptr>());
            field->setText(function(field->text(), key->key() == Qt::Key_Up));
            return true;
        }
    }
    return QDialog::eventFilter(watched, event);
}

void frmAddInCatalogue::cmdAdd()
{
    if (m_txtName->text().isEmpty()) {
        m_ctx.prompter().message((m_kind.category == Category::Audio
                                      ? QStringLiteral("Введите название группы или исполнителя.")
                                      : QStringLiteral("Введите название диска.")) +
                                     QStringLiteral("\nДанное поле является обязательным для заполнения."),
                                 MessageStyle::Exclamation);
        m_txtName->setFocus();
        return;
    }
    if (m_kind.category != Category::Dvd && m_txtDictionary->text().size() > 50) {
        m_ctx.prompter().message(m_kind.category == Category::Audio
                                     ? QStringLiteral("Название стиля не должно быть длинее 50 символов!")
                                     : QStringLiteral("Описание не должно быть длинее 50 символов!"),
                                 MessageStyle::Exclamation);
        m_txtDictionary->setFocus();
        return;
    }
    for (QLineEdit* field : {m_txtName, m_txtAlbum, m_txtDictionary}) {
        if (field) {
            field->setText(CleanText(field->text()));
        }
    }
    storeDiscValues();
    m_disc.number = m_lblNumber->text().toInt();
    m_disc.name = m_txtName->text();
    m_disc.album = m_txtAlbum ? m_txtAlbum->text() : QString();
    m_disc.year = m_txtYear->text().left(5);
    m_disc.discs = discCount(m_txtCDs->text());
    m_disc.dictionaryName = m_txtDictionary->text().left(50);
    m_disc.description = m_txtDescription ? m_txtDescription->text().left(255) : QString();
    if (m_kind.category == Category::Dvd) {
        m_disc.dvdTime = m_txtTime->text();
        m_disc.zone = m_cmbZone->currentText();
        QStringList checked;
        for (int i = 0; i < m_lvSoundFormat->count(); ++i) {
            if (m_lvSoundFormat->item(i)->checkState() == Qt::Checked) {
                checked.append(m_lvSoundFormat->item(i)->data(Qt::UserRole).toString());
            }
        }
        m_disc.soundFormats = soundFormatField(checked);
    }
    const bool saved = underFaultHandler(m_ctx, objectName() + QStringLiteral(", cmdAdd()"), [&] {
        return saveDisc(
            m_ctx, m_kind, m_disc, m_mode == Mode::Add, m_oldDiscCount, [this](const QString& text) {
                return m_ctx.prompter().message(text, MessageStyle::YesNoExclamation) == Answer::Yes;
            });
    });
    if (!saved) {
        return;
    }
    m_ctx.DialogDone = true;
    accept();
}

void frmAddInCatalogue::cmdInfo()
{
    if (m_ctx.prompter().message(
            QStringLiteral(
                "Для получения информации о количестве треков и продолжительности воспроизведения диска "
                "необходимо вставить Аудио диск в устройство для чтения компакт-дисков. Продоложить?"),
            MessageStyle::OkCancelQuestion) != Answer::Ok) {
        return;
    }
    std::unique_ptr<Medium> medium;
    {
        WaitCursor hourglass;
        medium = openMedium(m_cmbDrive->currentText());
    }
    if (!medium || medium->toc().isEmpty()) {
        m_ctx.prompter().message(
            QStringLiteral("Вставьте Аудио диск в устройство для чтения компакт-дисков!"),
            MessageStyle::Exclamation);
        return;
    }
    m_txtTrack->setText(QStringLiteral("%1").arg(medium->toc().tracks.size(), 2, 10, QLatin1Char('0')));
    const QString time = playingTimeText(medium->toc());
    if (time.isEmpty()) {
        m_ctx.prompter().message(QStringLiteral("Ошибка определеня времени воспроизведения диска!"),
                                 MessageStyle::Exclamation);
        return;
    }
    m_txtTime->setText(time);
}

} // namespace vinora
