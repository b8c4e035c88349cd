#include "ui/DesktopTheme.h"

#include <QApplication>
#include <QLibraryInfo>
#include <QLocale>
#include <QPalette>
#include <QProcess>
#include <QStandardPaths>
#include <QStyle>
#include <QStyleFactory>
#include <QTranslator>

namespace vinora {
namespace {

bool gnomePrefersDark()
{
    const QString gsettings = QStandardPaths::findExecutable(QStringLiteral("gsettings"));
    if (gsettings.isEmpty() || qEnvironmentVariableIsEmpty("DBUS_SESSION_BUS_ADDRESS")) {
        return false;
    }
    QProcess query;
    query.start(gsettings, {QStringLiteral("get"), QStringLiteral("org.gnome.desktop.interface"),
                            QStringLiteral("color-scheme")});
    return query.waitForFinished(500) && query.readAllStandardOutput().contains("prefer-dark");
}

QPalette darkPalette()
{
    QPalette palette;
    const QColor window(0x2b, 0x2d, 0x31);
    const QColor base(0x1e, 0x1f, 0x22);
    const QColor text(0xe8, 0xe8, 0xea);
    const QColor disabled(0x80, 0x82, 0x88);
    const QColor highlight(0x3d, 0x7a, 0xd6);
    palette.setColor(QPalette::Window, window);
    palette.setColor(QPalette::WindowText, text);
    palette.setColor(QPalette::Base, base);
    palette.setColor(QPalette::AlternateBase, window);
    palette.setColor(QPalette::ToolTipBase, base);
    palette.setColor(QPalette::ToolTipText, text);
    palette.setColor(QPalette::PlaceholderText, disabled);
    palette.setColor(QPalette::Text, text);
    palette.setColor(QPalette::Button, window);
    palette.setColor(QPalette::ButtonText, text);
    palette.setColor(QPalette::BrightText, Qt::white);
    palette.setColor(QPalette::Link, highlight.lighter(130));
    palette.setColor(QPalette::Highlight, highlight);
    palette.setColor(QPalette::HighlightedText, Qt::white);
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText}) {
        palette.setColor(QPalette::Disabled, role, disabled);
    }
    return palette;
}

} // namespace

ColorScheme desktopColorScheme()
{
    const QString forced = qEnvironmentVariable("VINORA_COLOR_SCHEME").toLower();
    if (forced == u"dark" || forced == u"light") {
        return forced == u"dark" ? ColorScheme::Dark : ColorScheme::Light;
    }
    if (qEnvironmentVariable("GTK_THEME").endsWith(QStringLiteral(":dark"), Qt::CaseInsensitive)) {
        return ColorScheme::Dark;
    }
    return gnomePrefersDark() ? ColorScheme::Dark : ColorScheme::Light;
}

void installRussianTranslations(QApplication& app)
{
    auto* translator = new QTranslator(&app);
    if (translator->load(QLocale(QLocale::Russian, QLocale::Russia), QStringLiteral("qtbase"),
                         QStringLiteral("_"), QLibraryInfo::path(QLibraryInfo::TranslationsPath))) {
        QApplication::installTranslator(translator);
    }
}

void followDesktopTheme(QApplication&)
{
    applyColorScheme(std::nullopt);
}

void applyColorScheme(std::optional<ColorScheme> scheme)
{
    // The look the platform gave before any change of ours, to go back to.
    static const QString platformStyle = QApplication::style()->name();
    static const QPalette platformPalette = QApplication::palette();
    const bool platformIsDark = platformPalette.color(QPalette::Window).lightness() < 128;
    const ColorScheme wanted = scheme ? *scheme : desktopColorScheme();
    if ((wanted == ColorScheme::Dark) == platformIsDark) {
        QApplication::setStyle(QStyleFactory::create(platformStyle));
        QApplication::setPalette(platformPalette);
        return;
    }
    QStyle* fusion = QStyleFactory::create(QStringLiteral("Fusion"));
    QApplication::setStyle(fusion);
    QApplication::setPalette(wanted == ColorScheme::Dark ? darkPalette() : fusion->standardPalette());
}

} // namespace vinora
