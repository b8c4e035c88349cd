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
    return ctx.skipIni().read(kSection, id, kSkipBuffer).trimmed();
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
            ctx.skipIni().write(kSection, id, categoryOf(kind));
            ctx.DialogDone = false;
            return kind;
        }
        const Answer answer = ctx.prompter().message(
            QStringLiteral(
                "Вы не указали категорию диска, он не будет привязан не к одной из категорий. Продолжить?"),
            MessageStyle::YesNo);
        if (answer == Answer::Yes) {
            ctx.skipIni().write(kSection, id, QStringLiteral("n/a"));
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

bool ChangeDiscCategory(AppContext& ctx, const QString& drive, const CategoryChooser& chooser)
{
    const Answer answer = ctx.prompter().message(
        QStringLiteral(
            "Используйте эту функцию для корректировки принадлежности диска к какой-либо категории при "
            "невозможности определить ее верно в автоматическом режиме! Продолжить?"),
        MessageStyle::YesNo);
    if (answer != Answer::Yes) {
        return false;
    }
    const QString id = GetDiskID(ctx, drive, chooser);
    if (id.isEmpty()) {
        ctx.prompter().message(QStringLiteral("В устройстве ") + drive +
                                   QStringLiteral(" компакт-диск не обнаружен!"),
                               MessageStyle::Exclamation);
        return false;
    }
    ctx.skipIni().write(kSection, ctx.CurrentDiscID, QStringLiteral("n/a"));
    AskCategory(ctx, id, chooser);
    return true;
}

} // namespace vinora
