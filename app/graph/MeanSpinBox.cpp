#include "app/graph/MeanSpinBox.h"

#include <cmath>

void MeanSpinBox::setMean(double mean)
{
    isNumber = !std::isnan(mean);
    setValue(isNumber ? mean : 0.0);
}

QString MeanSpinBox::textFromValue(double value) const
{
    return isNumber ? QDoubleSpinBox::textFromValue(value) : QString();
}

QValidator::State MeanSpinBox::validate(QString &text, int &position) const
{
    // An empty field is complete: else it would be given its last number when it loses the focus.
    return text.isEmpty() && !isNumber ? QValidator::Acceptable
                                       : QDoubleSpinBox::validate(text, position);
}
