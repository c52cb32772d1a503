#pragma once

#include <QDoubleSpinBox>

/// A field for a mean delay in milliseconds. It can be typed into, but neither wheel nor keys step
/// it; a mean that is no number is an empty field.
class MeanSpinBox : public QDoubleSpinBox
{
    Q_OBJECT

public:
    using QDoubleSpinBox::QDoubleSpinBox;

    /// Show a mean, within the field's range.
    void setMean(double mean);

    [[nodiscard]] QString textFromValue(double value) const override;
    QValidator::State validate(QString &text, int &position) const override;

protected:
    [[nodiscard]] StepEnabled stepEnabled() const override { return StepNone; }

private:
    bool isNumber = true;
};
