#pragma once

#include <QTest>
#include <initializer_list>

namespace vinora::test {

// Columns of one type for a data table.
template <typename T> void addColumns(std::initializer_list<const char*> names)
{
    for (const char* name : names) {
        QTest::addColumn<T>(name);
    }
}

// A row of a data table: its tag, then a value per column (a const char* goes in as a QString).
template <typename... Values> void addRow(const char* tag, const Values&... values)
{
    (QTest::newRow(tag) << ... << values);
}

} // namespace vinora::test
