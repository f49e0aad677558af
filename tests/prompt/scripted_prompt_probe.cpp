// Breaks the rules of SCRIPTED_PROMPT on purpose; each function must fail.
#include "prompt.h"
#include "scripted_prompt.h"

#include <QtTest/QtTest>

class SCRIPTED_PROMPT_PROBE : public QObject
{
    Q_OBJECT

private slots:
    void unscripted_question()
    {
        SCRIPTED_PROMPT prompts;
        prompt::question(nullptr, QStringLiteral("Orbin"), QStringLiteral("Close anyway?"));
    }

    void unused_answer()
    {
        SCRIPTED_PROMPT prompts;
        prompts.button(QMessageBox::Yes).text(QStringLiteral("never asked"));
        prompt::question(nullptr, QStringLiteral("Orbin"), QStringLiteral("Close anyway?"));
    }
};

QTEST_MAIN(SCRIPTED_PROMPT_PROBE)
#include "scripted_prompt_probe.moc"
