#include "quill_main_window.h"
#include "quill_start_options.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QTimer>
#include <QtWidgets/QApplication>

#include <cstdio>
#include <memory>

int main(int argc, char** argv)
{
    QStringList arguments;
    for (int index = 0; index < argc; ++index)
        arguments << QString::fromLocal8Bit(argv[index]);
    QUILL_START_OPTIONS options;
    QString error;
    const bool parsed = QUILL_START_OPTIONS::parse(arguments, options, error);

    // Help, version and a bad command line need no display.
    if (!parsed || options.help_requested || options.version_requested)
    {
        QCoreApplication application(argc, argv);
        QCoreApplication::setApplicationName(QStringLiteral("quill"));
        QCoreApplication::setApplicationVersion(QStringLiteral("1.0"));
        if (!parsed)
        {
            std::fprintf(stderr, "quill: %s\n", qPrintable(error));
            return 2;
        }
        if (options.help_requested)
            std::fputs(qPrintable(QUILL_START_OPTIONS::help_text()), stdout);
        else
            std::printf("quill %s\n", qPrintable(QCoreApplication::applicationVersion()));
        return 0;
    }

    QApplication application(argc, argv);
    QApplication::setApplicationName(QStringLiteral("quill"));
    QApplication::setApplicationVersion(QStringLiteral("1.0"));
    QUILL_MAIN_WINDOW window;
    QObject::connect(&window, &QUILL_MAIN_WINDOW::logged,
                     [](const QString& line) { std::fprintf(stderr, "quill: %s\n", qPrintable(line)); });
    window.show();
    // After the window is up, so that its messages have something to sit on.
    QTimer::singleShot(0, &window, [&window, options] { window.start(options); });
    return application.exec();
}
