#pragma once

#include "progress_callback.h"

#include <QList>
#include <QPair>
#include <QString>

// A progress sink that keeps every report, for callers that want the engine's
// messages as text afterwards (tools without a window, generators, tests).
class PROGRESS_REPORT_LIST : public PROGRESS_CALLBACK
{
public:
    void set_maximum_progress(int) override {}
    void set_progress_text(const char*) override {}
    void add_progress(int) override {}
    bool query(const char*) override { return false; }
    void reset_progress() override {}
    void report(const char* text, int severity) override;

    // Text and severity of each report, in the order they came.
    QList<QPair<QString, int>> reports;

    // Reports of at least that severity, joined by line feeds.
    QString texts(int minimum_severity) const;
    // How many reports had exactly that severity.
    int count(int severity) const;
    void clear() { reports.clear(); }
};
