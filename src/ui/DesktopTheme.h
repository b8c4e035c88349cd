#pragma once

#include <optional>

class QApplication;

namespace vinora {

enum class ColorScheme { Light, Dark };

// The colour scheme the desktop asks for: VINORA_COLOR_SCHEME ("dark" or "light") when
// set, else a GTK theme named with ":dark" or GNOME's "prefer-dark" setting, else light.
ColorScheme desktopColorScheme();

// Qt's own texts (buttons of message boxes and dialogs) in Russian, as the rest.
void installRussianTranslations(QApplication& app);

// Follows the desktop: the platform theme normally brings its palette; when the desktop
// asks for dark and the palette is still light, a dark palette of the same style is used.
void followDesktopTheme(QApplication& app);

// Uses `scheme` whatever the desktop asks for, or follows the desktop when none is given.
// May be called again while windows are open: they take the new colours at once.
void applyColorScheme(std::optional<ColorScheme> scheme);

} // namespace vinora
