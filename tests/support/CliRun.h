#pragma once

#include <QProcess>
#include <QStringList>

namespace vinora::test {

// vinora-cli (VINORA_CLI, set by the test's build) started with `home` as its application folder.
inline void startCli(QProcess& process, const QString& home, const QStringList& arguments)
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("VINORA_HOME"), home);
    process.setProcessEnvironment(environment);
    process.start(QStringLiteral(VINORA_CLI), arguments);
}

struct CliRun
{
    int code = -1; // -1 when the tool crashed or did not end in time
    bool crashed = true;
    QString out;
    QString err;
};

inline CliRun readCli(QProcess& process)
{
    CliRun run;
    run.crashed = process.exitStatus() != QProcess::NormalExit;
    run.code = run.crashed ? -1 : process.exitCode();
    run.out = QString::fromUtf8(process.readAllStandardOutput());
    run.err = QString::fromUtf8(process.readAllStandardError());
    return run;
}

inline CliRun runCli(const QString& home, const QStringList& arguments, int timeout = 60000)
{
    QProcess process;
    startCli(process, home, arguments);
    if (!process.waitForFinished(timeout)) {
        process.kill();
        process.waitForFinished();
        return {};
    }
    return readCli(process);
}

} // namespace vinora::test
