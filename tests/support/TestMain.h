#pragma once

#include <QApplication>
#include <QLocale>
#include <QTest>

// Runs a test class in a Russian locale, as the program runs.
#define VINORA_TEST_MAIN(TestClass)                                                                          \
    int main(int argc, char* argv[])                                                                         \
    {                                                                                                        \
        QApplication app(argc, argv);                                                                        \
        QLocale::setDefault(QLocale(QLocale::Russian, QLocale::Russia));                                     \
        TestClass test;                                                                                      \
        return QTest::qExec(&test, argc, argv);                                                              \
    }
