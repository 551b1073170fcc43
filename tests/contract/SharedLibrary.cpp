// SPDX-License-Identifier: MIT
#include "SharedLibrary.h"

#include <QProcess>

#include <cxxabi.h>

#include <cstdlib>

QStringList SharedLibraries()
{
#ifdef TORVALEN_STATIC
    return {};
#else
    return QStringLiteral(TORVALEN_LIBRARIES).split(QLatin1Char(':'));
#endif
}

QStringList ExportedNames(const QString& path)
{
    QProcess nm;
    nm.start(QStringLiteral("nm"),
             {QStringLiteral("-D"), QStringLiteral("--defined-only"), QStringLiteral("-P"), path});
    if (!nm.waitForFinished() || nm.exitCode() != 0)
        return {};
    QStringList names;
    for (const QString& line : QString::fromUtf8(nm.readAllStandardOutput()).split(QLatin1Char('\n')))
    {
        const QString name = line.section(QLatin1Char(' '), 0, 0);
        if (!name.isEmpty())
            names << name;
    }
    names.sort();
    return names;
}

QString Demangled(const QString& mangled)
{
    int status = 0;
    char* const text = abi::__cxa_demangle(mangled.toLatin1().constData(), nullptr, nullptr, &status);
    const QString demangled = status == 0 ? QString::fromUtf8(text) : mangled;
    std::free(text);
    return demangled;
}
