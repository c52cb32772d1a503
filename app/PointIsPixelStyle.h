#pragma once

#include <QProxyStyle>

/// The platform's style for forms that are laid out where a point is a pixel (72 per inch): a
/// widget whose font has a size of its own in points gets the same size in pixels, so that its
/// text fits on screens of any density. Other text keeps the platform's size.
class PointIsPixelStyle : public QProxyStyle
{
public:
    using QProxyStyle::polish;
    void polish(QWidget *widget) override;
};
