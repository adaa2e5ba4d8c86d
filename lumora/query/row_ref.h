// A reference to a row that knows when the row is gone.
#pragma once

namespace lumora {

class TFilterRow;
class TRowRefs;

// To be held over a call of a handler, which may do anything with the query's rows. The row must be one of a
// query; when it is freed, the reference is empty.
class TRowRefBase {
public:
    explicit TRowRefBase(TFilterRow* row) { SetRow(row); }
    TRowRefBase(const TRowRefBase& other) : TRowRefBase(other.row_) {}
    TRowRefBase& operator=(const TRowRefBase&) = delete;
    ~TRowRefBase() { SetRow(nullptr); }

    explicit operator bool() const { return row_ != nullptr; }

protected:
    void SetRow(TFilterRow* row);

    TFilterRow* row_ = nullptr;

private:
    friend class TRowRefs;

    TRowRefBase* previous_ = nullptr; // in the query's list
    TRowRefBase* next_ = nullptr;
    TRowRefs* list_ = nullptr;
};

template <typename TRow>
class TRowRef : public TRowRefBase {
public:
    explicit TRowRef(TRow* row = nullptr) : TRowRefBase(row) {}
    void Set(TRow* row) { SetRow(row); }
    TRow* Get() const { return static_cast<TRow*>(row_); }
    TRow& operator*() const { return *Get(); }
    TRow* operator->() const { return Get(); }
};

// The references to rows of one query.
class TRowRefs {
public:
    TRowRefs() = default;
    TRowRefs(const TRowRefs&) = delete;
    TRowRefs& operator=(const TRowRefs&) = delete;
    ~TRowRefs();

    void Add(TRowRefBase& ref);
    void Remove(TRowRefBase& ref);
    void RowDestroyed(const TFilterRow& row);

private:
    TRowRefBase* first_ = nullptr;
};

} // namespace lumora
