#pragma once

#include "OssInterface/Properties/OssPropertyEditor.h"

class OssNumberField;

/// Edits a real or whole number.
class OssNumberEditor : public OssPropertyEditor
{
    Q_OBJECT

public:
    explicit OssNumberEditor(QWidget *parent);
    void showValue(const OssCustomAttribute &attribute, const OssMixed &mixed) override;

private:
    QVariant asValue(double number) const;

    OssNumberField *m_field;
    int m_type = QMetaType::Double;
};

/// Edits the two numbers of a point.
class OssVectorEditor : public OssPropertyEditor
{
    Q_OBJECT

public:
    explicit OssVectorEditor(QWidget *parent);
    void showValue(const OssCustomAttribute &attribute, const OssMixed &mixed) override;

private:
    QVariant value() const;

    OssNumberField *m_fields[2] = {};
};
