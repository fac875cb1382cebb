#include "ZELKLWCInspectorSubViewController.h"

#include "ZELKEnvironment.h"
#include "ZELKInspectorCell.h"
#include "ZELKInspectorFacts.h"
#include "ZELKInspectorKind.h"
#include "ZELKInterfaceLoader.h"
#include "ZELKLWCInspectorDictionarySubViewController.h"
#include "ZELKLWCInspectorEntrySubViewController.h"
#include "ZELKLWCInspectorLabelSubViewController.h"
#include "ZELKLWCInspectorLabelView.h"

namespace {

using Controller = ZELKLWCInspectorSubViewController;

constexpr int codeOfNib = 88;
const QString keyColumn = QStringLiteral("key");
const QString timeColumn = QStringLiteral("time");

bool isDate(const QVariant &value)
{
    return value.metaType() == QMetaType::fromType<ZELKDate>();
}

QVariantList elementsOf(const QVariant &value)
{
    if (ZELKInspectorValue::kindOf(value) != ZELKInspectorKind::Array)
        return {};
    if (value.metaType() != QMetaType::fromType<QStringList>())
        return value.toList();
    QVariantList texts;
    for (const QString &text : value.toStringList())
        texts.append(text);
    return texts;
}

ZELKDictionary itemsOf(const QVariant &value)
{
    switch (ZELKInspectorValue::kindOf(value)) {
    case ZELKInspectorKind::Entry:
        return ZELKInspectorFacts::ofEntry(*ZELKInspectorValue::entry(ZELKInspectorValue::single(value)));
    case ZELKInspectorKind::Selection:
        return ZELKInspectorFacts::ofSelection(*ZELKInspectorValue::selection(value));
    case ZELKInspectorKind::Dictionary:
        return value.value<ZELKDictionary>();
    case ZELKInspectorKind::Array:
    case ZELKInspectorKind::Scalar:
    case ZELKInspectorKind::Unsupported:
        break;
    }
    return {};
}

ZELKInterfaceLoader::Widgets widgets()
{
    return {ZELKInterfaceLoader::widget<ZELKLWCInspectorLabelView>(),
            ZELKInterfaceLoader::widget<ZELKInspectorTextView>(),
            ZELKInterfaceLoader::widget<ZELKInspectorTableView>()};
}

ZELKAttributedString centred(const QString &message)
{
    ZELKAttributedString text = ZELKInspectorCell::ofKey(message).text;
    text.changeAttributes([](ZELKTextAttributes &attributes) {
        attributes.paragraph.alignment = ZELKParagraphStyle::Alignment::Centre;
    });
    return text;
}

template <typename Type, typename... Arguments>
Controller::Pointer awoken(Arguments &&...arguments)
{
    auto controller = std::make_unique<Type>(std::forward<Arguments>(arguments)...);
    controller->awakeFromNib();
    return controller;
}

} // namespace

// MARK: making

Controller::Pointer Controller::inspectorSubViewControllerWithLabel(const QString &label)
{
    return awoken<ZELKLWCInspectorLabelSubViewController>(label);
}

Controller::Pointer Controller::inspectorSubViewControllerWithMessage(const QString &message)
{
    return awoken<Controller>(QVariant(), message,
                              QStringLiteral("ZELKLWCInspectorMessageSubViewController"));
}

Controller::Pointer Controller::inspectorSubViewControllerWithAttributeValue(const QVariant &value,
                                                                             const QString &key)
{
    switch (ZELKInspectorValue::kindOf(value)) {
    case ZELKInspectorKind::Entry:
        return awoken<ZELKLWCInspectorEntrySubViewController>(
            *ZELKInspectorValue::entry(ZELKInspectorValue::single(value)));
    case ZELKInspectorKind::Selection:
        return awoken<Controller>(value, key, QStringLiteral("ZELKLWCInspectorSelection"));
    case ZELKInspectorKind::Array:
        return awoken<Controller>(value, key, QStringLiteral("ZELKLWCInspectorArraySubViewController"));
    case ZELKInspectorKind::Dictionary:
        return awoken<ZELKLWCInspectorDictionarySubViewController>(value, key);
    case ZELKInspectorKind::Scalar:
        return awoken<Controller>(value, key, QStringLiteral("ZELKLWCInspectorScalarSubViewController"));
    case ZELKInspectorKind::Unsupported:
        break;
    }
    return inspectorSubViewControllerWithMessage(ZELKInterfaceLoader::text(
        QStringLiteral("ZELKLWCInspectorController"), QStringLiteral("Unsupported attribute")));
}

Controller::ZELKLWCInspectorSubViewController(const QVariant &value, const QString &key, const QString &nib)
    : m_attributeKey(key)
    , m_attributeValue(value)
    , m_elements(elementsOf(value))
    , m_items(itemsOf(value))
{
    zelkGuard([&] { loadNib(nib); });
}

Controller::~ZELKLWCInspectorSubViewController()
{
    delete m_view;
}

void Controller::loadNib(const QString &nib)
{
    m_view =
        ZELKInterfaceLoader::loadIfSound(*ZELKEnvironment::current().mainBundle, nib, widgets()).release();
    if (!m_view)
        ZELKAssertion::fail(QStringLiteral("client/ZELKLWCInspectorSubViewController"), codeOfNib,
                            ZELKFormat("Unable to load %@ nib.", {nib}));
}

// MARK: outlets

void Controller::awakeFromNib()
{
    if (auto *message = outlet<ZELKInspectorTextView>("messageView")) {
        message->setAttributedText(centred(m_attributeKey));
        message->setAccessibleName(m_attributeKey);
    }
    if (auto *headline = outlet<ZELKInspectorTextView>("titleView")) {
        headline->setAttributedText(title());
        headline->setAccessibleName(m_attributeKey);
    }
    if (auto *value = outlet<ZELKInspectorTextView>("valueView")) {
        value->setAttributedText(ZELKInspectorCell::ofValue(m_attributeValue).text);
        value->setAccessibleName(m_attributeKey);
    }
    if (outlet<ZELKInspectorTableView>("tableView"))
        fillTable();
}

void Controller::fillTable()
{
    auto &table = *outlet<ZELKInspectorTableView>("tableView");
    if (!m_elements.isEmpty() && isDate(m_elements.constFirst()))
        table.setColumns({table.columns().value(0), timeColumn});
    table.setAccessibleName(m_attributeKey);
    table.setSource(this);
    table.reloadData();
}

ZELKAttributedString Controller::title() const
{
    const ZELKInspectorValue::Selection selection = ZELKInspectorValue::selection(m_attributeValue);
    return selection ? ZELKInspectorFacts::titleOf(*selection) : ZELKAttributedString();
}

// MARK: rows

int Controller::numberOfRowsInTableView() const
{
    return int(m_elements.size() + m_items.size());
}

QVariant Controller::tableViewObjectValueForTableColumn(const QString &column, int row) const
{
    if (row >= 0 && row < m_items.size()) {
        const auto &[key, value] = m_items.begin()[row];
        return column == keyColumn ? QVariant(key) : value;
    }
    const QVariant element = m_elements.value(row);
    if (!isDate(element))
        return element;
    return column == timeColumn ? ZELKInspectorFacts::time(element.value<ZELKDate>())
                                : dateFormatter().stringFromDate(element.value<ZELKDate>());
}
