// SPDX-License-Identifier: GPL-3.0-or-later
#include "toolkit/accessibility.h"

#include "toolkit/accessible_tabs.h"
#include "toolkit/form_widget.h"
#include "toolkit/image_widget.h"
#include "toolkit/later.h"
#include "toolkit/slider.h"

#include <QAbstractItemView>
#include <QAccessibleWidget>
#include <QApplication>
#include <QComboBox>
#include <QFrame>
#include <QTabBar>
#include <algorithm>
#include <cmath>

namespace
{

// What a modal window stands before is out of reach, as it is for the mouse.
bool isBlocked(const QWidget& widget)
{
    const auto* modal = QApplication::activeModalWidget();
    return modal && modal != widget.window();
}

class AccessibleImage final : public QAccessibleWidget, private QAccessibleValueInterface
{
public:
    explicit AccessibleImage(ctl::ImageWidget& widget) : QAccessibleWidget(&widget), widget_(widget) {}

    QAccessible::Role role() const override
    {
        if (isThumb())
            return QAccessible::Slider;
        return acts() ? QAccessible::Button : QAccessible::Graphic;
    }

    // What only adorns the window, or only catches the pointer, is not there for who has none.
    QAccessible::State state() const override
    {
        QAccessible::State state = QAccessibleWidget::state();
        if (!isThumb() && !acts() && text(QAccessible::Name).isEmpty())
            state.invisible = true;
        return state;
    }

    void* interface_cast(QAccessible::InterfaceType type) override
    {
        if (type == QAccessible::ValueInterface)
            return slider() ? static_cast<QAccessibleValueInterface*>(this) : nullptr;
        return QAccessibleWidget::interface_cast(type);
    }

    QStringList actionNames() const override { return acts() ? QStringList{pressAction()} : QStringList(); }

    // The caller is answered first: what a press starts may run for hours.
    void doAction(const QString& action) override
    {
        if (action != pressAction() || !acts())
            return;
        auto* widget = &widget_;
        const auto press = [widget] {
            if (widget->isEnabled() && !isBlocked(*widget))
                widget->act();
        };
        later(widget, press);
    }

private:
    QVariant currentValue() const override { return slider()->Value(); }
    QVariant minimumValue() const override { return slider()->Min(); }
    QVariant maximumValue() const override { return slider()->Max(); }
    QVariant minimumStepSize() const override { return 1; }

    // As with a press, the caller is answered first.
    void setCurrentValue(const QVariant& value) override
    {
        const double held = std::clamp(value.toDouble(), double(slider()->Min()), double(slider()->Max()));
        auto* widget = &widget_;
        const auto move = [widget, wanted = static_cast<std::int32_t>(std::lround(held))] {
            if (widget->isEnabled() && !isBlocked(*widget))
                widget->image().slider()->moveByUser(wanted);
        };
        later(widget, move);
    }

    ctl::Slider* slider() const { return widget_.image().slider(); }
    bool isThumb() const { return widget_.image().use() == ctl::Image::Use::thumb; }
    bool acts() const { return widget_.image().Click.isWired(); }

    ctl::ImageWidget& widget_;
};

// The toolkit calls a drop-down list by its choice; here that is its value.
class AccessibleBox final : public QAccessibleWidget
{
public:
    explicit AccessibleBox(QComboBox& box) : QAccessibleWidget(&box, QAccessible::ComboBox), box_(box) {}

    int childCount() const override { return 1; }
    QAccessibleInterface* child(int index) const override
    {
        return index == 0 ? QAccessible::queryAccessibleInterface(box_.view()) : nullptr;
    }
    int indexOfChild(const QAccessibleInterface* child) const override
    {
        return child->object() == box_.view() ? 0 : -1;
    }

    QString text(QAccessible::Text kind) const override
    {
        const QString own = QAccessibleWidget::text(kind);
        return kind == QAccessible::Value || (kind == QAccessible::Name && own.isEmpty()) ? box_.currentText()
                                                                                          : own;
    }

    QStringList actionNames() const override { return {showMenuAction(), pressAction()}; }

    void doAction(const QString&) override
    {
        auto* box = &box_;
        const auto open = [box] {
            if (box->isEnabled() && !isBlocked(*box))
                box->showPopup();
        };
        later(box, open);
    }

private:
    QComboBox& box_;
};

QAccessibleInterface* interfaceOf(const QString&, QObject* object)
{
    if (auto* image = dynamic_cast<ctl::ImageWidget*>(object))
        return new AccessibleImage(*image);
    if (auto* form = dynamic_cast<FormWidget*>(object))
        return new QAccessibleWidget(form, QAccessible::Window);
    if (auto* box = qobject_cast<QComboBox*>(object); box && !box->isEditable())
        return new AccessibleBox(*box);
    if (auto* tabs = qobject_cast<QTabBar*>(object))
        return accessibleTabs(*tabs);
    if (object != nullptr &&
        object->metaObject() == &QFrame::staticMetaObject) // a line, which would pass for a window
        return new QAccessibleWidget(static_cast<QWidget*>(object), QAccessible::Separator);
    return nullptr;
}

}

void makeWidgetsAccessible() { QAccessible::installFactory(interfaceOf); }
