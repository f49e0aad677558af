#pragma once

// The library's dialogs. They are windows, so they are built in the widget
// layer; the engine only hands them out through KOR_LIBRARY_DIALOG_FACTORY.
// Each has a static form_name() and registers with the window registry.
class SUBMISSION_DIALOG;         // initialise(QString& error)
class REQUEST_SUBMISSION_DIALOG; // initialise(QString& error); signal requestSubmitted()
class LOCAL_DATA_CHANGES_DIALOG; // signals requestAreFormsOpen(), transactionApplied(const QStringList&),
                                 // statusUpdate(QString); slot formsOpen(bool)
class REQUESTS_MANAGER;          // built directly by the application
class APPLY_COMMANDS_FOR_MULTIPLE_BRANCHES; // built directly by the application
class WAITING_TO_SUBMIT_DIALOG;             // built directly by the application
