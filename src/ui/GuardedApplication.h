#pragma once

#include <QApplication>

namespace vinora {

class AppContext;

// The application object of the window program: the last line of defence for every
// window command. An error of the program's own (AppError: a damaged database, a file
// that cannot be written) that no routine handled is logged and told, and the program
// goes on; anything else ends in the fault routine. Without it an exception leaving an
// event handler would end the process without a word.
class GuardedApplication final : public QApplication
{
public:
    GuardedApplication(int& argc, char** argv) : QApplication(argc, argv) {}

    void setContext(const AppContext* ctx) { m_ctx = ctx; }
    bool notify(QObject* receiver, QEvent* event) override;

private:
    const AppContext* m_ctx = nullptr;
};

// The place text of an error in an event of `receiver`: its window's name and the event,
// as in "frmFileList, event()".
QString eventPlace(const QObject* receiver);

} // namespace vinora
