// The events of a panel as signals.
#include "lumora/lumora.h"
#include "lumora/widgets/iconlist.h"
#include "lumora/widgets/querypanelwidget.h"

#include <QMetaMethod>

namespace lumora {

// A sub-query's panel may outlive the widget. That a signal is connected counts as a handler: a value has an
// editor of the host's where somebody listens to customEditRequested.
template <typename TEventType, typename TSignal, typename TEmit>
void QueryPanelWidget::listenTo(TEventType& event, TSignal signal, TEmit emitSignal) {
    const QPointer<QueryPanelWidget> self(this);
    event.AddListener(
        this,
        [self, emitSignal](TVQueryPanel& sender, auto&&... args) {
            if (self)
                emitSignal(sender, args...);
        },
        [self, method = QMetaMethod::fromSignal(signal)] { return self && self->isSignalConnected(method); });
}

// The handler that was told before may have freed the condition; only its address is looked at.
template <typename TEventType, typename TSignal>
void QueryPanelWidget::listenToValue(TEventType& event, TSignal signal) {
    listenTo(event, signal, [this, signal](TVQueryPanel& sender, TFilterCond& condition, auto... args) {
        if (sender.HasRow(&condition))
            (this->*signal)(condition, args...);
    });
}

void QueryPanelWidget::listenToPanel(TVQueryPanel& panel) {
    using T = QueryPanelWidget;
    panel.OnActive.AddListener(this, [this](TVQueryPanel& sender) {
        const QPointer<QueryPanelWidget> self(this);
        emit activeChanged(sender.GetActive());
        if (self)
            tellSettings();
    });
    toldName_ = panel.GetQueryName();
    panel.OnChange.AddListener(this, [this](TVQueryPanel& sender) {
        const bool isRenamed = sender.GetQueryName() != toldName_;
        toldName_ = sender.GetQueryName();
        const QPointer<QueryPanelWidget> self(this);
        emit queryChanged();
        if (self && isRenamed)
            tellSettings();
    });
    listenTo(panel.OnParamListChange, &T::parametersChanged,
             [this](TVQueryPanel&) { emit parametersChanged(); });
    listenTo(panel.OnRFEHelpClick, &T::resultFieldsHelpRequested,
             [this](TVQueryPanel&) { emit resultFieldsHelpRequested(); });
    listenToConditions(panel);
}

void QueryPanelWidget::listenToConditions(TVQueryPanel& panel) {
    using T = QueryPanelWidget;
    listenToValue(panel.OnCustomEdit, &T::customEditRequested);
    listenToValue(panel.OnChangeValue, &T::valueChanged);
    listenToValue(panel.OnSetValue, &T::valueSet);
    listenToValue(panel.OnCustomValue, &T::customValueRequested);
    listenToValue(panel.OnValueDblClick, &T::valueDoubleClicked);
    listenToValue(panel.OnConditionChange, &T::conditionChanged);
    listenTo(panel.OnBuildSQL, &T::buildingSql,
             [this](TVQueryPanel&, TFilterCond& condition, std::string& text) {
                 const QString before = QString::fromStdString(text);
                 QString changed = before;
                 emit buildingSql(condition, changed);
                 if (changed != before) // a text that is no UTF-8 stays as it is
                     text = changed.toStdString();
             });
    listenTo(panel.OnGetGroupImageIndex, &T::groupImageNeeded,
             [this](TVQueryPanel&, const TDSFieldGroup& group, int& index) {
                 emit groupImageNeeded(group, index);
             });
    listenTo(
        panel.OnGetItemImageIndex, &T::itemImageNeeded,
        [this](TVQueryPanel&, const TDSField& field, int& index) { emit itemImageNeeded(field, index); });
}

void QueryPanelWidget::stopListeningTo(TVQueryPanel& panel) {
    panel.OnActive.RemoveListener(this);
    panel.OnChange.RemoveListener(this);
    panel.OnParamListChange.RemoveListener(this);
    panel.OnRFEHelpClick.RemoveListener(this);
    panel.OnCustomEdit.RemoveListener(this);
    panel.OnChangeValue.RemoveListener(this);
    panel.OnSetValue.RemoveListener(this);
    panel.OnCustomValue.RemoveListener(this);
    panel.OnValueDblClick.RemoveListener(this);
    panel.OnConditionChange.RemoveListener(this);
    panel.OnBuildSQL.RemoveListener(this);
    panel.OnGetGroupImageIndex.RemoveListener(this);
    panel.OnGetItemImageIndex.RemoveListener(this);
}

const QList<QIcon>& QueryPanelWidget::icons() const {
    static const QList<QIcon> none;
    const auto* const list = dynamic_cast<const IconList*>(panel() ? panel()->GetImages() : nullptr);
    return list ? list->icons : none;
}

} // namespace lumora
