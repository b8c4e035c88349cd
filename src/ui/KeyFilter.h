#pragma once

#include <QObject>

namespace vinora {

// Applies one of the key rules (DigitKeys, DiscCountKeys) to a text field: typed
// characters that the rule drops never reach the field. Editing keys pass as usual.
class KeyFilter : public QObject
{
    Q_OBJECT
public:
    using Rule = int (*)(int keyAscii);
    KeyFilter(Rule rule, QObject* parent);

    // Installs a filter with `rule` on `field`, owned by the field.
    static void install(QObject* field, Rule rule);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    Rule m_rule;
};

} // namespace vinora
