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
    // Otherwise an empty field would get its last number back when it loses the focus.
    return text.isEmpty() && !isNumber ? QValidator::Acceptable
                                       : QDoubleSpinBox::validate(text, position);
}
