#include "recognition/DiscIdentity.h"

#include "frame/AppContext.h"

namespace vinora {
namespace {

const QString kSection = QStringLiteral("CD");
constexpr int kSkipBuffer = 15;

QString categoryOf(const QString& kind)
{
    return kind == u"AudioCD" ? QStringLiteral("AD")
           : kind == u"PcCD"  ? QStringLiteral("PC")
                              : QStringLiteral("DVD");
}

} // namespace

QString SerialToID(quint32 serial)
{
    return serial == 0 ? QString() : QString::number(serial, 16).toUpper();
}

QString ReadSkipCD(const AppContext& ctx, const QString& id)
{
    // A disc without an identifier has no entry: an empty key names no disc.
    return id.isEmpty() ? QString() : ctx.skipIni().read(kSection, id, kSkipBuffer).trimmed();
}

void WriteSkipCD(const AppContext& ctx, const QString& id, const QString& category)
{
    if (!id.isEmpty()) {
        ctx.skipIni().write(kSection, id, category);
    }
}

QString kindFromProperties(const VolumeInfo& volume)
{
    if (volume.maxComponentLength == 221 && volume.label.left(8) == u"Audio CD") {
        return QStringLiteral("AudioCD");
    }
    if (volume.maxComponentLength == 255 && volume.fsName.left(3) == u"UDF") {
        return QStringLiteral("DVD");
    }
    if (volume.maxComponentLength == 110 || volume.maxComponentLength == 221) {
        return QStringLiteral("PcCD");
    }
    return {};
}

QString kindFromCategory(const QString& category)
{
    if (category == u"AD") {
        return QStringLiteral("AudioCD");
    }
    if (category == u"PC") {
        return QStringLiteral("PcCD");
    }
    if (category == u"DVD") {
        return QStringLiteral("DVD");
    }
    return {};
}

std::optional<QString> decideKind(const AppContext& ctx, const VolumeInfo& volume)
{
    const QString stored = ReadSkipCD(ctx, SerialToID(volume.serial));
    if (!stored.isEmpty()) {
        return kindFromCategory(stored);
    }
    const QString kind = kindFromProperties(volume);
    return kind.isEmpty() ? std::nullopt : std::optional<QString>(kind);
}

bool categoryMustBeAsked(const AppContext& ctx, const VolumeInfo& volume)
{
    const bool present = volume.maxComponentLength != 0 || volume.serial != 0;
    return present && !decideKind(ctx, volume);
}

QString kindCaption(const QString& kind)
{
    return kind == u"AudioCD" ? QStringLiteral("Аудио диск")
           : kind == u"PcCD"  ? QStringLiteral("Компьютерный диск")
           : kind == u"DVD"   ? QStringLiteral("DVD диск")
                              : QStringLiteral("(нет)");
}

QString AskCategory(AppContext& ctx, const QString& id, const CategoryChooser& chooser)
{
    for (;;) {
        const std::optional<QString> chosen = chooser();
        ctx.DialogDone = chosen.has_value();
        if (chosen) {
            const QString kind = kindFromCategory(*chosen);
            WriteSkipCD(ctx, id, categoryOf(kind));
            ctx.DialogDone = false;
            return kind;
        }
        const Answer answer = ctx.prompter().message(
            QStringLiteral(
                "Вы не указали категорию диска, он не будет привязан не к одной из категорий. Продолжить?"),
            MessageStyle::YesNo);
        if (answer == Answer::Yes) {
            WriteSkipCD(ctx, id, QStringLiteral("n/a"));
            ctx.DialogDone = false;
            return {};
        }
    }
}

QString kindOfVolume(AppContext& ctx, const VolumeInfo& info, const CategoryChooser& chooser)
{
    if (info.maxComponentLength == 0 && info.serial == 0) {
        return {};
    }
    const std::optional<QString> decided = decideKind(ctx, info);
    const QString kind = decided ? *decided : AskCategory(ctx, SerialToID(info.serial), chooser);
    return info.ok ? kind : QString();
}

QString GetDiskIDcheck(AppContext& ctx, const QString& drive, const CategoryChooser& chooser,
                       VolumeInfo* volume)
{
    const VolumeInfo info = readVolumeInfo(drive);
    if (volume) {
        *volume = info;
    }
    return kindOfVolume(ctx, info, chooser);
}

QString GetDiskID(AppContext& ctx, const QString& drive, const CategoryChooser& chooser)
{
    VolumeInfo volume;
    ctx.LastDiscKind = GetDiskIDcheck(ctx, drive, chooser, &volume);
    return ctx.LastDiscKind.isEmpty() ? QString() : SerialToID(volume.serial);
}

bool ChangeDiscCategory(AppContext& ctx, const QString& drive, const CategoryChooser& chooser,
                        const std::function<void()>& onGoAhead)
{
    const Answer answer = ctx.prompter().message(
        QStringLiteral(
            "Используйте эту функцию для корректировки принадлежности диска к какой-либо категории при "
            "невозможности определить ее верно в автоматическом режиме! Продолжить?"),
        MessageStyle::YesNo);
    if (answer != Answer::Yes) {
        return false;
    }
    if (onGoAhead) {
        onGoAhead();
    }
    const QString id = GetDiskID(ctx, drive, chooser);
    if (id.isEmpty()) {
        ctx.prompter().message(QStringLiteral("В устройстве ") + drive +
                                   QStringLiteral(" компакт-диск не обнаружен!"),
                               MessageStyle::Exclamation);
        return false;
    }
    // The disc corrected is the one in the drive now, whatever disc was seen before it.
    ctx.CurrentDiscID = id;
    WriteSkipCD(ctx, id, QStringLiteral("n/a"));
    AskCategory(ctx, id, chooser);
    return true;
}

} // namespace vinora
