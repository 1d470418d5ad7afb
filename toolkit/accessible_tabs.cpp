// SPDX-License-Identifier: GPL-3.0-or-later
#include "toolkit/accessible_tabs.h"

#include "toolkit/later.h"

#include <QAccessibleWidget>
#include <QRegularExpression>
#include <QTabBar>
#include <map>

namespace
{

// Without the mark of its access key; what is doubled shows once.
QString plain(QString caption)
{
    static const QRegularExpression mark("&(.)");
    return caption.replace(mark, "\\1");
}

class AccessibleTab final : public QAccessibleInterface, private QAccessibleActionInterface
{
public:
    AccessibleTab(QTabBar& bar, int index) : bar_(bar), index_(index) {}

    bool isValid() const override { return index_ < bar_.count(); }
    QObject* object() const override { return nullptr; }
    QAccessible::Role role() const override { return QAccessible::PageTab; }
    QAccessibleInterface* parent() const override { return QAccessible::queryAccessibleInterface(&bar_); }
    QAccessibleInterface* child(int) const override { return nullptr; }
    QAccessibleInterface* childAt(int, int) const override { return nullptr; }
    int childCount() const override { return 0; }
    int indexOfChild(const QAccessibleInterface*) const override { return -1; }

    QString text(QAccessible::Text kind) const override
    {
        return kind == QAccessible::Name ? plain(bar_.tabText(index_)) : QString();
    }
    void setText(QAccessible::Text, const QString&) override {}

    QRect rect() const override
    {
        const QRect place = bar_.tabRect(index_);
        return {bar_.mapToGlobal(place.topLeft()), place.size()};
    }

    QAccessible::State state() const override
    {
        QAccessible::State state = parent()->state();
        const bool isInFront = bar_.currentIndex() == index_;
        state.selectable = true;
        state.selected = isInFront;
        state.focused = isInFront && bar_.hasFocus();
        return state;
    }

    void* interface_cast(QAccessible::InterfaceType type) override
    {
        return type == QAccessible::ActionInterface ? static_cast<QAccessibleActionInterface*>(this)
                                                    : nullptr;
    }

private:
    QStringList actionNames() const override { return {pressAction()}; }
    QStringList keyBindingsForAction(const QString&) const override { return {}; }

    // The caller is answered first, as everywhere.
    void doAction(const QString& action) override
    {
        if (action == pressAction())
            later(&bar_, [&bar = bar_, index = index_] { bar.setCurrentIndex(index); });
    }

    QTabBar& bar_;
    int index_;
};

class AccessibleTabs final : public QAccessibleWidget
{
public:
    explicit AccessibleTabs(QTabBar& bar) : QAccessibleWidget(&bar, QAccessible::PageTabList), bar_(bar) {}

    ~AccessibleTabs() override
    {
        for (const auto& [index, id] : tabs_)
            QAccessible::deleteAccessibleInterface(id);
    }

    int childCount() const override { return bar_.count(); }

    QAccessibleInterface* child(int index) const override
    {
        if (index < 0 || index >= bar_.count())
            return nullptr;
        auto known = tabs_.find(index);
        if (known == tabs_.end())
            known = tabs_.emplace(index, registered(index)).first;
        return QAccessible::accessibleInterface(known->second);
    }

    int indexOfChild(const QAccessibleInterface* child) const override
    {
        for (const auto& [index, id] : tabs_)
            if (QAccessible::accessibleInterface(id) == child)
                return index;
        return -1;
    }

    QAccessibleInterface* childAt(int x, int y) const override
    {
        return child(bar_.tabAt(bar_.mapFromGlobal(QPoint(x, y))));
    }

    QAccessibleInterface* focusChild() const override
    {
        return bar_.hasFocus() ? child(bar_.currentIndex()) : nullptr;
    }

private:
    QAccessible::Id registered(int index) const
    {
        auto* tab = new AccessibleTab(bar_, index);
        // The library's register owns it. NOLINTNEXTLINE(clang-analyzer-cplusplus.NewDeleteLeaks)
        return QAccessible::registerAccessibleInterface(tab);
    }

    QTabBar& bar_;
    mutable std::map<int, QAccessible::Id> tabs_;
};

}

QAccessibleInterface* accessibleTabs(QTabBar& bar) { return new AccessibleTabs(bar); }
