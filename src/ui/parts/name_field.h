#pragma once

#include "ui/parts/guarded_field.h"

namespace ui_parts {

/// A field for a name of one line. What has no room is not taken: what stands never moves for it.
class Name_Field final : public Guarded_Field {
    Q_OBJECT
public:
    /// @param width longest name in characters
    Name_Field(QWidget* parent, int width);
    /// Whether what stands there is what room there was for of a longer text. Ends with the next
    /// change.
    bool was_cut() const { return cut_; }

Q_SIGNALS:
    void cut();  ///< a text came that was only taken in part
    void full(); ///< a text came and there was no room for any of it

protected:
    QString admitted(const QString& given, int from, int to) override;
    void answered(const QString& given, const QString& taken) override;

private:
    void fit();

    int width_;
    bool cut_ = false;
};

} // namespace ui_parts
