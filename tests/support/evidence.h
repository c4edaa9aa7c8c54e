#pragma once

#include <QFile>
#include <QString>
#include <QTest>

/// What tests saw of a fault in a phase, for docs/reliability.md: lines in a file of this test's own in the
/// directory that the environment variable TALVEX_RELIABILITY names, if it does.
namespace evidence {

inline QString testName()
{
    return QFile::symLinkTarget("/proc/self/exe").section('/', -1);
}

inline void write(const QStringList& fields)
{
    const QString directory = qEnvironmentVariable("TALVEX_RELIABILITY");
    if (directory.isEmpty())
        return;
    QFile file(directory + '/' + testName());
    if (!file.open(QIODevice::Append) || file.write(fields.join('\t').toUtf8() + '\n') < 0)
        qFatal("cannot write %s", qPrintable(file.fileName()));
}

/// Announces a fault of this group, with the reason why it cannot occur in the phases that are not noted.
inline void row(const QString& group, const QString& fault, const QString& elsewhere)
{
    write({"row", group, fault, elsewhere});
}

/// Notes what happens; to be called behind the checks. Nothing is noted of a failed test.
inline void cell(const QString& group, const QString& fault, const QString& phase, const QString& outcome)
{
    if (!QTest::currentTestFailed())
        write({"cell", group, fault, phase, outcome, testName() + "::" + QTest::currentTestFunction()});
}

} // namespace evidence
