// Who is told of what becomes of a data model.
#pragma once

namespace lumora {

class TDSCondition;
class TDSField;
class TDSOperator;
class TDSTable;

// Whoever keeps references to items of a model is told before they are freed; they are in no list any more
// then. A handler may do anything to the model but free it, and may free any listener.
class TModelListener {
public:
    virtual ~TModelListener() = default;
    virtual void FieldRemoved(TDSField&) {}
    virtual void OperatorRemoved(TDSOperator&) {}
    virtual void TableRemoved(TDSTable&) {}
    virtual void ConditionRemoved(TDSCondition&) {}
    // All items go away together; new ones may stand in their place at ModelReplaced.
    virtual void ModelReplacing() {}
    virtual void ModelReplaced() {}
    // The model itself goes away, and its items with it.
    virtual void ModelDestroyed() {}
};

} // namespace lumora
