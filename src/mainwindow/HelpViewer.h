#pragma once

#include <QDialog>

class QTextBrowser;
class QUrl;

namespace vinora {

class AppContext;

// The help window: a shipped page (HTML) or text file read inside the program, so help
// works on a machine without a desktop browser. Links between shipped pages stay in the
// window; web and mail addresses go to the desktop.
class HelpViewer : public QDialog
{
    Q_OBJECT
public:
    explicit HelpViewer(AppContext& ctx, QWidget* parent = nullptr);

    // Shows `file` (an existing file: .htm/.html as a page, anything else as plain text).
    void showFile(const QString& file);
    QTextBrowser* browser() const { return m_browser; }

private:
    void followLink(const QUrl& link);

    AppContext& m_ctx;
    QTextBrowser* m_browser = nullptr;
};

} // namespace vinora
