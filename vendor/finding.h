#pragma once

#include <QString>
#include <QVector>

enum class Severity { note, error };

/// One thing that a vendor should know before a customer does.
struct Finding
{
    Severity severity;
    const char* kind; ///< for machines: "duplicate-key"
    int line;         ///< in the catalogue, from 1; 0: about no single line
    QString key;      ///< as written there; empty: about the whole file
    QString text;     ///< for people; may contain anything that the catalogue contains
};

using Findings = QVector<Finding>;
