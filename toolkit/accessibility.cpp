#include "toolkit/accessibility.h"

#include "toolkit/image_widget.h"

#include <QAccessibleWidget>

namespace
{

class AccessibleImage final : public QAccessibleWidget
{
public:
    explicit AccessibleImage(ctl::ImageWidget& widget) : QAccessibleWidget(&widget), widget_(widget) {}

    QAccessible::Role role() const override
    {
        if (widget_.image().use() == ctl::Image::Use::thumb)
            return QAccessible::Slider;
        return acts() ? QAccessible::Button : QAccessible::Graphic;
    }

    QStringList actionNames() const override { return acts() ? QStringList{pressAction()} : QStringList(); }

    void doAction(const QString& action) override
    {
        if (action == pressAction() && acts() && widget_.isEnabled())
            widget_.act();
    }

private:
    bool acts() const { return widget_.image().Click.isWired(); }

    ctl::ImageWidget& widget_;
};

QAccessibleInterface* imageInterface(const QString&, QObject* object)
{
    auto* widget = dynamic_cast<ctl::ImageWidget*>(object);
    return widget ? new AccessibleImage(*widget) : nullptr;
}

}

void makeImagesAccessible() { QAccessible::installFactory(imageInterface); }
