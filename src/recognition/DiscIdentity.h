#pragma once

#include "recognition/VolumeIdentity.h"

#include <QString>
#include <functional>
#include <optional>

namespace vinora {

class AppContext;

// The category the user picks for a disc that could not be classified: "AD", "PC" or
// "DVD", or nothing when the choice was cancelled.
using CategoryChooser = std::function<std::optional<QString>()>;

// The identifier of a volume serial: upper-case hexadecimal without leading zeros, empty
// for 0.
QString SerialToID(quint32 serial);

// The category stored for a disc in skipcd.ini ("AD", "PC", "DVD", "n/a"), or empty.
QString ReadSkipCD(const AppContext& ctx, const QString& id);
// Stores the category of disc `id`; a disc without an identifier is never stored.
void WriteSkipCD(const AppContext& ctx, const QString& id, const QString& category);

// The kind word that the volume's own properties give: "AudioCD", "PcCD", "DVD", or empty
// when they say nothing and the user must be asked.
QString kindFromProperties(const VolumeInfo& volume);

// The kind word of a stored category: "AD" -> "AudioCD", "PC" -> "PcCD", "DVD" -> "DVD",
// anything else (such as "n/a") -> empty.
QString kindFromCategory(const QString& category);

// The kind as skipcd.ini and the volume's own properties decide it ("AudioCD", "PcCD",
// "DVD", or empty for a disc stored as "n/a"), or nothing when the user must be asked.
std::optional<QString> decideKind(const AppContext& ctx, const VolumeInfo& volume);

// True when neither skipcd.ini nor the volume's properties decide the kind of a volume
// that is there, so the user must be asked.
bool categoryMustBeAsked(const AppContext& ctx, const VolumeInfo& volume);

// What the scan and add dialogs show for a kind word: "Аудио диск", "Компьютерный диск",
// "DVD диск", or "(нет)".
QString kindCaption(const QString& kind);

// Asks the user for the category of disc `id` until it is chosen, or the refusal is
// confirmed (then the disc is stored as "n/a"); the answer is stored in skipcd.ini.
QString AskCategory(AppContext& ctx, const QString& id, const CategoryChooser& chooser);

// The kind of a volume already read (the drive watch reads it off the GUI thread).
QString kindOfVolume(AppContext& ctx, const VolumeInfo& volume, const CategoryChooser& chooser);

// The kind of the medium in `drive`: "AudioCD", "PcCD", "DVD", or empty for no usable
// medium. skipcd.ini overrules the volume's properties; a volume of unknown kind is
// put to the user once. `volume` receives the volume information when given.
QString GetDiskIDcheck(AppContext& ctx, const QString& drive, const CategoryChooser& chooser,
                       VolumeInfo* volume = nullptr);

// The identifier of the medium in `drive`, or empty when it has no usable kind. The kind
// is kept in `ctx.LastDiscKind`.
QString GetDiskID(AppContext& ctx, const QString& drive, const CategoryChooser& chooser);

// The manual correction of a disc's category (the command "Изменить категорию диска").
// `onGoAhead` runs once the user has agreed, before the drive is read (the window stops its
// drive watch there). Returns true when the drive watch should start again.
bool ChangeDiscCategory(AppContext& ctx, const QString& drive, const CategoryChooser& chooser,
                        const std::function<void()>& onGoAhead = {});

} // namespace vinora
