#pragma once

#include "ZELKLWCInspectorSubViewController.h"

class ZELKLWCLogEntry;

/// Shows one log entry, which must outlive the controller: its summary, and what there is to say of it
/// besides its attributes.
class ZELKLWCInspectorEntrySubViewController : public ZELKLWCInspectorSubViewController
{
public:
    explicit ZELKLWCInspectorEntrySubViewController(ZELKLWCLogEntry &entry);

protected:
    ZELKAttributedString title() const override;

private:
    ZELKLWCLogEntry &m_entry;
};
