#pragma once

#include <QTest>

/// The table of a test: declares the columns, and is then called with the name and the values of each row.
///
///     const Rows<QString, int> row("text", "length");
///     row("one word", "abc", 3);
template<typename... Columns> class Rows
{
public:
    template<typename... Names> explicit Rows(Names... names) { (QTest::addColumn<Columns>(names), ...); }

    void operator()(const char* name, const Columns&... values) const
    {
        (QTest::newRow(name) << ... << values);
    }
};
