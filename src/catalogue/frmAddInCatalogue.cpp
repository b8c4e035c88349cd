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
#include "ui/EnterKey.h"
#include "ui/KeyFilter.h"
#include "ui/TitleWidth.h"
#include "ui/WaitCursor.h"

#include <QComboBox>
#include <QCompleter>
#include <QDate>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QToolButton>
#include <QVBoxLayout>
#include <QValidator>

namespace vinora {
namespace {

const char* const kAddCaptions[] = {"Добавление Аудио диска", "Добавление Компьютерного диска",
                                    "Добавление DVD диска"};
const char* const kChangeCaptions[] = {"Изменение информации Аудио диска",
                                       "Изменение информации Компьютерного диска",
                                       "Изменение информации DVD диска"};
const char* const kFormNames[] = {"frmAddInCatalogueAudio", "frmAddInCataloguePC", "frmAddInCatalogueDVD"};
const char* const kDictionaryFields[] = {"txtStyle", "txtDescription", "txtGenre"};

// The minutes of a DVD: digits up to what the table's 16-bit field holds. A key that would
// go beyond is refused, as a text field refuses a character beyond its length.
class MinutesValidator : public QValidator
{
public:
    using QValidator::QValidator;
    State validate(QString& input, int&) const override
    {
        if (input.isEmpty()) {
            return Intermediate;
        }
        bool number = false;
        const int value = input.toInt(&number);
        return number && value >= 0 && value <= kDvdTimeMaximum ? Acceptable : Invalid;
    }
};

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
    // The fields are made in the order Enter walks through them, which is also the order of Tab.
    m_txtName = newLine(QStringLiteral("txtName"), kTitleLength);
    form->addRow(m_kind.nameCaption + u':', m_txtName);
    if (m_kind.hasAlbum) {
        m_txtAlbum = newLine(QStringLiteral("txtAlbum"), kTitleLength);
        form->addRow(QStringLiteral("Альбом:"), m_txtAlbum);
    }
    // The year and the count of discs; on the audio dialog beside them the tracks and the
    // time of the disc of the set that cmbCountCD chooses.
    auto* numbers = new QGridLayout;
    numbers->setColumnStretch(1, 1);
    m_txtYear = newLine(QStringLiteral("txtYear"), kYearLength);
    numbers->addWidget(new QLabel(QStringLiteral("Год:"), this), 0, 0);
    numbers->addWidget(withSpinner(m_txtYear, spinYear), 0, 1);
    if (category == Category::Audio) {
        m_txtTrack = newLine(QStringLiteral("txtTrack"), 2);
        numbers->addWidget(new QLabel(QStringLiteral("Треков:"), this), 0, 2);
        numbers->addWidget(withSpinner(m_txtTrack, spinTracks), 0, 3);
        numbers->setColumnStretch(3, 1);
    }
    m_txtCDs = newLine(QStringLiteral("txtCDs"), 1);
    KeyFilter::install(m_txtCDs, DiscCountKeys);
    numbers->addWidget(new QLabel(QStringLiteral("Дисков:"), this), 1, 0);
    numbers->addWidget(withSpinner(m_txtCDs, spinDiscs), 1, 1);
    if (category == Category::Audio) {
        m_txtTime = newLine(QStringLiteral("txtTime"), 5);
        numbers->addWidget(new QLabel(QStringLiteral("Время:"), this), 1, 2);
        numbers->addWidget(withSpinner(m_txtTime, spinTime), 1, 3);
        m_cmbCountCD = new QComboBox(this);
        m_cmbCountCD->setObjectName(QStringLiteral("cmbCountCD"));
        numbers->addWidget(new QLabel(QStringLiteral("Диск:"), this), 2, 2);
        numbers->addWidget(m_cmbCountCD, 2, 3);
        connect(m_cmbCountCD, &QComboBox::activated, this, &frmAddInCatalogue::cmbCountCD_Click);
        connect(m_txtTrack, &QLineEdit::textChanged, this, &frmAddInCatalogue::storeDiscValues);
        connect(m_txtTime, &QLineEdit::textChanged, this, &frmAddInCatalogue::storeDiscValues);
    }
    form->addRow(numbers);
    if (category == Category::Computer) {
        m_txtDescription = newLine(QStringLiteral("txtDescription2"), kDescriptionLength);
        form->addRow(QStringLiteral("Описание:"), m_txtDescription);
    }
    if (category == Category::Dvd) {
        m_txtDescription = newLine(QStringLiteral("txtDescription"), kDescriptionLength);
        form->addRow(QStringLiteral("Описание:"), m_txtDescription);
        m_txtTime = newLine(QStringLiteral("txtTime"), 5);
        m_txtTime->setValidator(new MinutesValidator(m_txtTime));
        KeyFilter::install(m_txtTime, DigitKeys);
        form->addRow(QStringLiteral("Время, мин:"), withSpinner(m_txtTime, spinMinutes));
        m_cmbZone = new QComboBox(this);
        m_cmbZone->setObjectName(QStringLiteral("cmbZone"));
        for (int zone = 0; zone <= 8; ++zone) {
            m_cmbZone->addItem(QString::number(zone));
        }
        form->addRow(QStringLiteral("Зона:"), m_cmbZone);
    }
    m_txtDictionary = newLine(QString::fromLatin1(kDictionaryFields[index]), 0);
    form->addRow(m_kind.dictionaryTable + u':', m_txtDictionary);
    if (category == Category::Dvd) {
        m_lvSoundFormat = new QListWidget(this);
        m_lvSoundFormat->setObjectName(QStringLiteral("lvSoundFormat"));
        form->addRow(QStringLiteral("Звук:"), m_lvSoundFormat);
    }
    layout->addLayout(form);

    // Enter moves on field by field and saves from the dictionary field; the audio dialog
    // goes name, album, year, tracks, discs, time, style.
    m_enterOrder = {m_txtName, m_txtAlbum, m_txtYear, m_txtTrack, m_txtCDs, m_txtDescription};
    if (category == Category::Audio) {
        m_enterOrder.append(m_txtTime);
    } else if (category == Category::Dvd) {
        m_enterOrder += {m_txtTime, m_cmbZone};
    }
    m_enterOrder.append(m_txtDictionary);
    m_enterOrder.removeAll(nullptr);

    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    buttons->button(QDialogButtonBox::Ok)->setObjectName(QStringLiteral("imgButton0"));
    buttons->button(QDialogButtonBox::Cancel)->setObjectName(QStringLiteral("imgButton1"));
    if (category == Category::Audio) {
        m_cmbDrive = new QComboBox(this);
        m_cmbDrive->setObjectName(QStringLiteral("cmbDrive"));
        m_cmdInfo = new QPushButton(QStringLiteral("С диска..."), this);
        m_cmdInfo->setObjectName(QStringLiteral("imgButton2"));
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

    // Tab follows the order of Enter, then the lists and the buttons.
    QList<QWidget*> tabOrder = m_enterOrder;
    tabOrder.insert(tabOrder.indexOf(m_txtDictionary), m_cmbCountCD);
    tabOrder += {m_lvSoundFormat, m_cmbDrive, m_cmdInfo, buttons->button(QDialogButtonBox::Ok),
                 buttons->button(QDialogButtonBox::Cancel)};
    tabOrder.removeAll(nullptr);
    for (qsizetype i = 1; i < tabOrder.size(); ++i) {
        setTabOrder(tabOrder[i - 1], tabOrder[i]);
    }
    keepTitleVisible(this);

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
    if (m_cmbZone) {
        m_cmbZone->installEventFilter(this);
    }
}

QLineEdit* frmAddInCatalogue::newLine(const QString& objectName, int maxLength)
{
    auto* field = new QLineEdit(this);
    field->setObjectName(objectName);
    if (maxLength > 0) {
        field->setMaxLength(maxLength); // what the table's field holds
    }
    return field;
}

QWidget* frmAddInCatalogue::withSpinner(QLineEdit* field, QString (*spin)(const QString&, bool))
{
    auto* box = new QWidget(this);
    auto* row = new QHBoxLayout(box);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(0);
    row->addWidget(field, 1);
    // The spinner: udYear, udTrack, udCDs, udTime. Its arrows are worked with the mouse or
    // the arrow keys in the field, and never take the focus from the field.
    auto* spinner = new QWidget(box);
    spinner->setObjectName(QStringLiteral("ud") + field->objectName().mid(3));
    auto* arrows = new QHBoxLayout(spinner);
    arrows->setContentsMargins(0, 0, 0, 0);
    arrows->setSpacing(0);
    for (const bool up : {false, true}) {
        auto* arrow = new QToolButton(spinner);
        arrow->setArrowType(up ? Qt::UpArrow : Qt::DownArrow);
        arrow->setFocusPolicy(Qt::NoFocus);
        arrow->setAutoRepeat(true);
        connect(arrow, &QToolButton::clicked, field,
                [field, spin, up] { field->setText(spin(field->text(), up)); });
        arrows->addWidget(arrow);
    }
    row->addWidget(spinner);
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
    if (event->type() != QEvent::KeyPress) {
        return QDialog::eventFilter(watched, event);
    }
    const auto* key = static_cast<QKeyEvent*>(event);
    const qsizetype place = m_enterOrder.indexOf(qobject_cast<QWidget*>(watched));
    if (place >= 0 && isEnterKey(key->key())) {
        if (m_enterOrder[place] == m_txtDictionary) {
            cmdAdd();
        } else {
            m_enterOrder[place + 1]->setFocus(Qt::TabFocusReason); // a field so reached has its text selected
        }
        return true;
    }
    auto* field = qobject_cast<QLineEdit*>(watched);
    const QVariant spin = field ? field->property("spin") : QVariant();
    if (spin.isValid() && (key->key() == Qt::Key_Up || key->key() == Qt::Key_Down)) {
        const auto function = reinterpret_cast<QString (*)(const QString&, bool)>(spin.value<quintptr>());
        field->setText(function(field->text(), key->key() == Qt::Key_Up));
        return true;
    }
    return QDialog::eventFilter(watched, event);
}

void frmAddInCatalogue::keyPressEvent(QKeyEvent* event)
{
    // Enter that no field took (a list, the disc of the set) neither saves nor goes on: the
    // disc is saved from the dictionary field or with OK only.
    if (isEnterKey(event->key())) {
        event->accept();
        return;
    }
    QDialog::keyPressEvent(event);
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
