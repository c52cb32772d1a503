#pragma once

#include <QDoubleSpinBox>

/// A field for a mean delay in milliseconds. Text can be typed into it, but neither the mouse wheel
/// nor the keys step its value. When the mean is not a number, the field is empty.
class MeanSpinBox : public QDoubleSpinBox
{
    Q_OBJECT

public:
    using QDoubleSpinBox::QDoubleSpinBox;

    /// Show a mean, or the nearest value in the field's range.
    void setMean(double mean);

    [[nodiscard]] QString textFromValue(double value) const override;
    QValidator::State validate(QString &text, int &position) const override;

protected:
    [[nodiscard]] StepEnabled stepEnabled() const override { return StepNone; }

private:
    bool isNumber = true;
};
