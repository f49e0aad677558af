#pragma once

#include "veld_table_data_view_model.h"

#include <QPointer>

// A paste or multi-cell edit on a table data model for the length of a scope:
// starts the mass operation and ends it on every way out, so that a kept
// cascade answer never outlives the operation that chose it.
class VELD_TABLE_MASS_OPERATION
{
public:
    explicit VELD_TABLE_MASS_OPERATION(VELD_TABLE_DATA_VIEW_MODEL* model) : m_model(model)
    {
        if (m_model)
            m_model->begin_mass_operation();
    }
    ~VELD_TABLE_MASS_OPERATION()
    {
        if (m_model)
            m_model->end_mass_operation();
    }
    VELD_TABLE_MASS_OPERATION(const VELD_TABLE_MASS_OPERATION&) = delete;
    VELD_TABLE_MASS_OPERATION& operator=(const VELD_TABLE_MASS_OPERATION&) = delete;

private:
    QPointer<VELD_TABLE_DATA_VIEW_MODEL> m_model;
};
