#include "bench_report.h"

#include <cstdio>

namespace
{
QString amount(double value, const QString& unit)
{
    if (value < 0)
        return QStringLiteral("-");
    const int decimals = value >= 100 ? 0 : value >= 10 ? 1 : 2;
    return QString::number(value, 'f', decimals) + QLatin1Char(' ') + unit;
}

QString target_text(const BENCH_FIGURE& figure)
{
    if (figure.target_ratio > 0)
        return QStringLiteral("<= %1x").arg(figure.target_ratio);
    if (figure.target_bound > 0)
        return QStringLiteral("< %1").arg(amount(figure.target_bound, figure.unit));
    return QString();
}

QString ratio_text(const BENCH_FIGURE& figure)
{
    return figure.ratio() < 0 ? QString() : QString::number(figure.ratio(), 'f', 2) + QLatin1Char('x');
}
} // namespace

QString BENCH_FIGURE::verdict() const
{
    if (target_ratio > 0 && baseline > 0)
        return ratio() <= target_ratio ? QStringLiteral("ok") : QStringLiteral("MISS");
    if (target_bound > 0)
        return ours < target_bound ? QStringLiteral("ok") : QStringLiteral("MISS");
    return QString();
}

void BENCH_REPORT::add(const BENCH_FIGURE& figure)
{
    m_figures.append(figure);
    std::printf("%-44s %11s  %-30s %11s %7s %8s %-4s %s\n", qPrintable(figure.name),
                qPrintable(amount(figure.ours, figure.unit)), qPrintable(figure.baseline_name),
                qPrintable(figure.baseline_name.isEmpty() ? QString() : amount(figure.baseline, figure.unit)),
                qPrintable(ratio_text(figure)), qPrintable(target_text(figure)), qPrintable(figure.verdict()),
                qPrintable(figure.note));
    std::fflush(stdout);
}

void BENCH_REPORT::note(const QString& text)
{
    std::printf("  %s\n", qPrintable(text));
    std::fflush(stdout);
}

void BENCH_REPORT::print_markdown() const
{
    std::printf("\n| figure | ours | baseline | ratio | target | |\n|---|---|---|---|---|---|\n");
    for (const BENCH_FIGURE& figure : m_figures)
    {
        const QString baseline =
            figure.baseline_name.isEmpty()
                ? QString()
                : figure.baseline_name + QStringLiteral(": ") + amount(figure.baseline, figure.unit);
        std::printf("| %s | %s | %s | %s | %s | %s |\n", qPrintable(figure.name),
                    qPrintable(amount(figure.ours, figure.unit)), qPrintable(baseline),
                    qPrintable(ratio_text(figure)), qPrintable(target_text(figure)),
                    qPrintable(figure.verdict()));
    }
    std::fflush(stdout);
}

int BENCH_REPORT::misses() const
{
    int count = 0;
    for (const BENCH_FIGURE& figure : m_figures)
        if (figure.verdict() == QLatin1String("MISS"))
            ++count;
    return count;
}
