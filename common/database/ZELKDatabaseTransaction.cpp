#include "ZELKDatabaseTransaction.h"

#include "ZELKAssertion.h"
#include "ZELKDatabaseController.h"

ZELKDatabaseTransaction::ZELKDatabaseTransaction(ZELKDatabaseController &controller, const QString &beginKey,
                                                 const QString &commitKey, const QString &rollbackKey)
    : m_controller(controller)
    , m_commitKey(commitKey)
    , m_rollbackKey(rollbackKey)
{
    m_controller.executeStatements(beginKey);
}

ZELKDatabaseTransaction::~ZELKDatabaseTransaction()
{
    if (m_committed)
        return;
    zelkGuard([this] {
        m_controller.setPreparedStatement({});
        if (m_controller.isInTransaction())
            m_controller.executeStatements(m_rollbackKey);
    });
}

void ZELKDatabaseTransaction::commit()
{
    m_controller.executeStatements(m_commitKey);
    m_committed = true;
}
