#pragma once

#include <QDialog>

namespace vinora {

class AppContext;

// "О программе": the version and the program's addresses.
class frmHelp : public QDialog
{
    Q_OBJECT
public:
    explicit frmHelp(AppContext& ctx, QWidget* parent = nullptr);
    static QString versionText();
};

// A read-only file shipped with the program (readme.txt, help pages): its installed place
// beside the program, or the source tree's when the program runs from its build folder.
QString shippedFile(const QString& relativePath);

} // namespace vinora
