#include "Classes/Services/HotKey.h"

#include "Kit/Foundation/ZQLocalized.h"

#include <algorithm>
#include <array>
#include <iterator>

namespace {

enum class Use : quint8 { Writes, Free }; // whether it does something in every program that has the focus

struct Key
{
    quint32 code;
    int qtKey;
    quint32 keysym;
    const char *keysymName;
    const char *text; // null: as the keysym's name, in capitals
    Use use = Use::Writes;
};

// Codes from 256 on are ours, for keys that the table of virtual codes has none for.
constexpr std::array keys{
    Key{0, Qt::Key_A, 'a', "a", nullptr},
    Key{11, Qt::Key_B, 'b', "b", nullptr},
    Key{8, Qt::Key_C, 'c', "c", nullptr},
    Key{2, Qt::Key_D, 'd', "d", nullptr},
    Key{14, Qt::Key_E, 'e', "e", nullptr},
    Key{3, Qt::Key_F, 'f', "f", nullptr},
    Key{5, Qt::Key_G, 'g', "g", nullptr},
    Key{4, Qt::Key_H, 'h', "h", nullptr},
    Key{34, Qt::Key_I, 'i', "i", nullptr},
    Key{38, Qt::Key_J, 'j', "j", nullptr},
    Key{40, Qt::Key_K, 'k', "k", nullptr},
    Key{37, Qt::Key_L, 'l', "l", nullptr},
    Key{46, Qt::Key_M, 'm', "m", nullptr},
    Key{45, Qt::Key_N, 'n', "n", nullptr},
    Key{31, Qt::Key_O, 'o', "o", nullptr},
    Key{35, Qt::Key_P, 'p', "p", nullptr},
    Key{12, Qt::Key_Q, 'q', "q", nullptr},
    Key{15, Qt::Key_R, 'r', "r", nullptr},
    Key{1, Qt::Key_S, 's', "s", nullptr},
    Key{17, Qt::Key_T, 't', "t", nullptr},
    Key{32, Qt::Key_U, 'u', "u", nullptr},
    Key{9, Qt::Key_V, 'v', "v", nullptr},
    Key{13, Qt::Key_W, 'w', "w", nullptr},
    Key{7, Qt::Key_X, 'x', "x", nullptr},
    Key{16, Qt::Key_Y, 'y', "y", nullptr},
    Key{6, Qt::Key_Z, 'z', "z", nullptr},
    Key{18, Qt::Key_1, '1', "1", nullptr},
    Key{19, Qt::Key_2, '2', "2", nullptr},
    Key{20, Qt::Key_3, '3', "3", nullptr},
    Key{21, Qt::Key_4, '4', "4", nullptr},
    Key{23, Qt::Key_5, '5', "5", nullptr},
    Key{22, Qt::Key_6, '6', "6", nullptr},
    Key{26, Qt::Key_7, '7', "7", nullptr},
    Key{28, Qt::Key_8, '8', "8", nullptr},
    Key{25, Qt::Key_9, '9', "9", nullptr},
    Key{29, Qt::Key_0, '0', "0", nullptr},
    Key{24, Qt::Key_Equal, '=', "equal", "="},
    Key{27, Qt::Key_Minus, '-', "minus", "-"},
    Key{33, Qt::Key_BracketLeft, '[', "bracketleft", "["},
    Key{30, Qt::Key_BracketRight, ']', "bracketright", "]"},
    Key{39, Qt::Key_Apostrophe, '\'', "apostrophe", "'"},
    Key{41, Qt::Key_Semicolon, ';', "semicolon", ";"},
    Key{42, Qt::Key_Backslash, '\\', "backslash", "\\"},
    Key{43, Qt::Key_Comma, ',', "comma", ","},
    Key{44, Qt::Key_Slash, '/', "slash", "/"},
    Key{47, Qt::Key_Period, '.', "period", "."},
    Key{50, Qt::Key_QuoteLeft, '`', "grave", "`"},
    Key{36, Qt::Key_Return, 0xff0d, "Return", zqKey("Return")},
    Key{48, Qt::Key_Tab, 0xff09, "Tab", zqKey("Tab")},
    Key{49, Qt::Key_Space, ' ', "space", zqKey("Space")},
    Key{51, Qt::Key_Backspace, 0xff08, "BackSpace", zqKey("Backspace")},
    Key{114, Qt::Key_Insert, 0xff63, "Insert", zqKey("Insert")},
    Key{117, Qt::Key_Delete, 0xffff, "Delete", zqKey("Delete")},
    Key{115, Qt::Key_Home, 0xff50, "Home", zqKey("Home")},
    Key{119, Qt::Key_End, 0xff57, "End", zqKey("End")},
    Key{116, Qt::Key_PageUp, 0xff55, "Prior", zqKey("Page Up")},
    Key{121, Qt::Key_PageDown, 0xff56, "Next", zqKey("Page Down")},
    Key{123, Qt::Key_Left, 0xff51, "Left", zqKey("Left")},
    Key{126, Qt::Key_Up, 0xff52, "Up", zqKey("Up")},
    Key{124, Qt::Key_Right, 0xff53, "Right", zqKey("Right")},
    Key{125, Qt::Key_Down, 0xff54, "Down", zqKey("Down")},
    Key{122, Qt::Key_F1, 0xffbe, "F1", nullptr, Use::Free},
    Key{120, Qt::Key_F2, 0xffbf, "F2", nullptr, Use::Free},
    Key{99, Qt::Key_F3, 0xffc0, "F3", nullptr, Use::Free},
    Key{118, Qt::Key_F4, 0xffc1, "F4", nullptr, Use::Free},
    Key{96, Qt::Key_F5, 0xffc2, "F5", nullptr, Use::Free},
    Key{97, Qt::Key_F6, 0xffc3, "F6", nullptr, Use::Free},
    Key{98, Qt::Key_F7, 0xffc4, "F7", nullptr, Use::Free},
    Key{100, Qt::Key_F8, 0xffc5, "F8", nullptr, Use::Free},
    Key{101, Qt::Key_F9, 0xffc6, "F9", nullptr, Use::Free},
    Key{109, Qt::Key_F10, 0xffc7, "F10", nullptr, Use::Free},
    Key{103, Qt::Key_F11, 0xffc8, "F11", nullptr, Use::Free},
    Key{111, Qt::Key_F12, 0xffc9, "F12", nullptr, Use::Free},
    Key{105, Qt::Key_F13, 0xffca, "F13", nullptr, Use::Free},
    Key{107, Qt::Key_F14, 0xffcb, "F14", nullptr, Use::Free},
    Key{113, Qt::Key_F15, 0xffcc, "F15", nullptr, Use::Free},
    Key{106, Qt::Key_F16, 0xffcd, "F16", nullptr, Use::Free},
    Key{64, Qt::Key_F17, 0xffce, "F17", nullptr, Use::Free},
    Key{79, Qt::Key_F18, 0xffcf, "F18", nullptr, Use::Free},
    Key{80, Qt::Key_F19, 0xffd0, "F19", nullptr, Use::Free},
    Key{90, Qt::Key_F20, 0xffd1, "F20", nullptr, Use::Free},
    Key{256, Qt::Key_Print, 0xff61, "Print", zqKey("Print"), Use::Free},
    Key{257, Qt::Key_Pause, 0xff13, "Pause", zqKey("Pause"), Use::Free},
};

struct Modifier
{
    quint32 flag;
    Qt::KeyboardModifier qt;
    const char *portal;
    const char *text;
};

// In the order in which they are shown.
constexpr std::array modifierKeys{
    Modifier{HotKey::command, Qt::ControlModifier, "CTRL", zqKey("Ctrl")},
    Modifier{HotKey::control, Qt::AltModifier, "ALT", zqKey("Alt")},
    Modifier{HotKey::shift, Qt::ShiftModifier, "SHIFT", zqKey("Shift")},
    Modifier{HotKey::option, Qt::MetaModifier, "LOGO", zqKey("Super")},
};
constexpr quint32 allFlags = HotKey::command | HotKey::control | HotKey::shift | HotKey::option;

template <class Test>
const Key *findKey(Test test)
{
    const auto *const key = std::find_if(keys.begin(), keys.end(), test);
    return key == keys.end() ? nullptr : &*key;
}

const Key *keyWithCode(quint32 code)
{
    return findKey([code](const Key &key) { return key.code == code; });
}

std::optional<HotKey> takeable(const Key *key, quint32 flags)
{
    const bool isHeldDown = (flags & ~HotKey::shift) != 0;
    if (!key || (key->use == Use::Writes && !isHeldDown)) {
        return std::nullopt;
    }
    return HotKey{key->code, flags};
}

QString textOf(const Key &key)
{
    return key.text ? zqLocalized(key.text) : QString::fromLatin1(key.keysymName).toUpper();
}

} // namespace

std::optional<HotKey> HotKey::fromSetting(const QVariantMap &setting)
{
    bool isCode = false;
    bool isMask = false;
    const quint32 code = setting.value(QStringLiteral("code")).toUInt(&isCode);
    const quint32 flags = setting.value(QStringLiteral("flags")).toUInt(&isMask);
    return isCode && isMask ? takeable(keyWithCode(code), flags & allFlags) : std::nullopt;
}

QVariantMap HotKey::setting() const
{
    return {{QStringLiteral("code"), code}, {QStringLiteral("flags"), flags}};
}

std::optional<HotKey> HotKey::fromQt(int key, Qt::KeyboardModifiers modifiers, quint32 nativeScanCode)
{
    constexpr quint32 firstDigit = 10; // the main row from 1 on, on X displays and on Wayland
    constexpr std::array<quint32, 10> digits{18, 19, 20, 21, 23, 22, 26, 28, 25, 29};
    quint32 flags = 0;
    for (const Modifier &modifier : modifierKeys) {
        flags |= modifiers.testFlag(modifier.qt) ? modifier.flag : 0;
    }
    const Key *found = findKey([key](const Key &each) { return each.qtKey == key; });
    const bool isShiftedDigit =
        (flags & shift) != 0 && nativeScanCode >= firstDigit && nativeScanCode < firstDigit + quint32(digits.size());
    if (isShiftedDigit) {
        found = keyWithCode(digits.at(nativeScanCode - firstDigit));
    } else if (key == Qt::Key_Backtab) {
        found = findKey([](const Key &each) { return each.qtKey == Qt::Key_Tab; });
    }
    return takeable(found, flags);
}

QStringList HotKey::caps() const
{
    QStringList texts;
    for (const Modifier &modifier : modifierKeys) {
        if ((flags & modifier.flag) != 0) {
            texts.append(zqLocalized(modifier.text));
        }
    }
    if (const Key *const key = keyWithCode(code)) {
        texts.append(textOf(*key));
    }
    return texts;
}

QString HotKey::text() const
{
    return caps().join(u'+');
}

quint32 HotKey::keysym() const
{
    const Key *const key = keyWithCode(code);
    return key ? key->keysym : 0;
}

Qt::KeyboardModifiers HotKey::modifiers() const
{
    Qt::KeyboardModifiers held;
    for (const Modifier &modifier : modifierKeys) {
        held.setFlag(modifier.qt, (flags & modifier.flag) != 0);
    }
    return held;
}

QString HotKey::portalTrigger() const
{
    QStringList parts;
    for (const Modifier &modifier : modifierKeys) {
        if ((flags & modifier.flag) != 0) {
            parts.append(QString::fromLatin1(modifier.portal));
        }
    }
    if (const Key *const key = keyWithCode(code)) {
        parts.append(QString::fromLatin1(key->keysymName));
    }
    return parts.join(u'+');
}

QString HotKey::instead()
{
    return zqLocalized("In the desktop's keyboard settings keys can be bound to “zelto snap area”, “zelto snap window” "
                       "and “zelto snap full”.");
}
