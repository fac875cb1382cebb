#pragma once

#include "ZELKAssertion.h"
#include "ZELKUserDefaults.h"

/// Keeps something that is on or off and a setting the same, both ways, as long as both live.
namespace ZELKDefaultBinding {

/// `control` is a check box, a button or a menu item. `defaults` must outlive it.
template <typename Control>
void bind(Control &control, ZELKUserDefaults &defaults, const QString &key)
{
    control.setCheckable(true);
    control.setChecked(defaults.boolForKey(key));
    QObject::connect(&control, &Control::toggled, &defaults, [&defaults, key](bool isOn) {
        zelkGuard([&] {
            if (defaults.boolForKey(key) != isOn)
                defaults.setValue(key, isOn);
        });
    });
    QObject::connect(&defaults, &ZELKUserDefaults::valueChanged, &control,
                     [&control, &defaults, key](const QString &changed) {
                         zelkGuard([&] {
                             if (changed == key)
                                 control.setChecked(defaults.boolForKey(key));
                         });
                     });
}

} // namespace ZELKDefaultBinding
