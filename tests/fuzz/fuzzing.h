#pragma once

#include <QCoreApplication>
#include <QtGlobal>

#include <cstdio>
#include <cstdlib>

// Bad input is logged and absorbed; millions of such lines would only slow
// the fuzzer down. A fatal message still aborts after this returns.
inline void dropMessages(QtMsgType, const QMessageLogContext &, const QString &) { }

inline void quietenQt()
{
    qInstallMessageHandler(dropMessages);
}

// The application object code that checks its thread expects, made once and
// kept for the life of the process. libFuzzer's own options stay out of it.
inline void startCoreApplication(char *program)
{
    static int argc = 1;
    static char *argv[] = {program, nullptr};
    static QCoreApplication *app = new QCoreApplication(argc, argv);
    Q_UNUSED(app);
}

// A broken property of the code under test: libFuzzer keeps the input.
#define FUZZ_CHECK(condition)                                                                                          \
    do {                                                                                                               \
        if (!(condition)) {                                                                                            \
            std::fprintf(stderr, "check failed: %s (%s:%d)\n", #condition, __FILE__, __LINE__);                        \
            std::abort();                                                                                              \
        }                                                                                                              \
    } while (false)
