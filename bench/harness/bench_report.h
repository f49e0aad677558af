#pragma once

#include <QString>
#include <QVector>

// One measured figure beside the baseline that bounds it from below.
struct BENCH_FIGURE
{
    QString name;
    double ours = 0;
    QString unit = QStringLiteral("ms");
    QString baseline_name;
    double baseline = -1; // none when negative
    // The target: a ratio to the baseline, or a bound in the figure's unit
    // (0: none).
    double target_ratio = 0;
    double target_bound = 0;
    QString note;

    double ratio() const { return baseline > 0 ? ours / baseline : -1; }
    // "ok", "MISS" or "" without a target.
    QString verdict() const;
};

// The figures of one run, printed as they come and once more as a Markdown
// table for docs/performance.md.
class BENCH_REPORT
{
public:
    void add(const BENCH_FIGURE& figure);
    void note(const QString& text);
    void print_markdown() const;
    int misses() const;

private:
    QVector<BENCH_FIGURE> m_figures;
};
