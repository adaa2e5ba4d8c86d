#include "lumora/query/row_ref.h"

#include "lumora/query/filter_rows.h"
#include "lumora/query/query.h"

namespace lumora {

void TRowRefBase::SetRow(TFilterRow* row) {
    if (list_)
        list_->Remove(*this);
    row_ = row;
    if (row_)
        row_->GetQuery().RowRefs().Add(*this);
}

TRowRefs::~TRowRefs() {
    while (first_) {
        first_->row_ = nullptr;
        Remove(*first_);
    }
}

void TRowRefs::Add(TRowRefBase& ref) {
    ref.list_ = this;
    ref.next_ = first_;
    if (first_)
        first_->previous_ = &ref;
    first_ = &ref;
}

void TRowRefs::Remove(TRowRefBase& ref) {
    (ref.previous_ ? ref.previous_->next_ : first_) = ref.next_;
    if (ref.next_)
        ref.next_->previous_ = ref.previous_;
    ref.previous_ = ref.next_ = nullptr;
    ref.list_ = nullptr;
}

void TRowRefs::RowDestroyed(const TFilterRow& row) {
    for (TRowRefBase* ref = first_; ref;) {
        TRowRefBase* const next = ref->next_;
        if (ref->row_ == &row) {
            ref->row_ = nullptr;
            Remove(*ref);
        }
        ref = next;
    }
}

} // namespace lumora
