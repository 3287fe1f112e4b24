#include "Classes/Services/XHotKeys.h"

#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Operations/ZQNotificationCenter.h"

#include <algorithm>
#include <array>
#include <utility>

namespace {

constexpr quint32 numLock = 0xff7f; // keysyms
constexpr quint32 scrollLock = 0xff14;
constexpr std::array<quint32, 2> altKeys{0xffe9, 0xffea};
constexpr std::array<quint32, 2> superKeys{0xffeb, 0xffec};
constexpr quint16 realModifiers = 0xff; // the rest of a state are buttons and the layout
constexpr quint8 sentByProgram = 0x80;

} // namespace

XHotKeys::XHotKeys(std::unique_ptr<ZQXConnection> connection)
    : m_connection(std::move(connection)),
      m_notifier(xcb_get_file_descriptor(m_connection->get()), QSocketNotifier::Read)
{
    m_keyboardChanged.setSingleShot(true);
    connect(&m_notifier, &QSocketNotifier::activated, this, &XHotKeys::readEvents);
    connect(&m_keyboardChanged, &QTimer::timeout, this, &XHotKeys::takeAllAnew);
    readKeyboard();
}

XHotKeys::~XHotKeys() = default;

void XHotKeys::readKeyboard()
{
    xcb_connection_t *const display = m_connection->get();
    const xcb_setup_t *const setup = xcb_get_setup(display);
    const int count = setup->max_keycode - setup->min_keycode + 1;
    const auto askedKeys = xcb_get_keyboard_mapping(display, setup->min_keycode, quint8(count));
    const auto askedModifiers = xcb_get_modifier_mapping(display);
    const ZQXReply<xcb_get_keyboard_mapping_reply_t> keys(xcb_get_keyboard_mapping_reply(display, askedKeys, nullptr));
    const ZQXReply<xcb_get_modifier_mapping_reply_t> modifiers(
        xcb_get_modifier_mapping_reply(display, askedModifiers, nullptr));
    m_keysyms.clear();
    m_firstKeycode = setup->min_keycode;
    m_alt = m_super = m_numLock = m_scrollLock = 0;
    if (!keys || !modifiers) {
        return;
    }
    const xcb_keysym_t *const keysyms = xcb_get_keyboard_mapping_keysyms(keys.get());
    const int perKey = keys->keysyms_per_keycode;
    for (int i = 0; perKey > 0 && i < xcb_get_keyboard_mapping_keysyms_length(keys.get()) / perKey; ++i) {
        m_keysyms.append(QList<quint32>(keysyms + i * perKey, keysyms + (i + 1) * perKey));
    }
    const xcb_keycode_t *const held = xcb_get_modifier_mapping_keycodes(modifiers.get());
    const int perModifier = modifiers->keycodes_per_modifier;
    for (int i = 0; i < 8 * perModifier; ++i) {
        const qsizetype index = held[i] - m_firstKeycode;
        const QList<quint32> on = held[i] != 0 ? m_keysyms.value(index) : QList<quint32>();
        const auto mask = quint16(1 << (i / perModifier));
        const auto has = [&on](quint32 keysym) { return on.contains(keysym); };
        m_numLock |= has(numLock) ? mask : quint16(0);
        m_scrollLock |= has(scrollLock) ? mask : quint16(0);
        m_alt |= std::any_of(altKeys.begin(), altKeys.end(), has) ? mask : quint16(0);
        m_super |= std::any_of(superKeys.begin(), superKeys.end(), has) ? mask : quint16(0);
    }
}

// Where the sign stands alone if there is such a key, else where it comes with Shift, as digits do in some layouts.
QList<xcb_keycode_t> XHotKeys::keycodesFor(quint32 keysym) const
{
    constexpr qsizetype levels = 4;
    QList<xcb_keycode_t> found;
    for (qsizetype level = 0; level < levels && found.isEmpty(); ++level) {
        for (qsizetype i = 0; i < m_keysyms.size(); ++i) {
            if (m_keysyms[i].value(level) == keysym) {
                found.append(xcb_keycode_t(m_firstKeycode + i));
            }
        }
    }
    return found;
}

std::optional<quint16> XHotKeys::modifiersFor(const HotKey &key) const
{
    const auto lowest = [](quint16 mask) { return quint16(mask & -mask); }; // one is enough to hold
    const Qt::KeyboardModifiers held = key.modifiers();
    const std::array<std::pair<Qt::KeyboardModifier, quint16>, 4> masks{{
        {Qt::ShiftModifier, quint16(XCB_MOD_MASK_SHIFT)},
        {Qt::ControlModifier, quint16(XCB_MOD_MASK_CONTROL)},
        {Qt::AltModifier, lowest(m_alt)},
        {Qt::MetaModifier, lowest(m_super)},
    }};
    quint16 modifiers = 0;
    for (const auto &[modifier, mask] : masks) {
        if (held.testFlag(modifier) && mask == 0) {
            return std::nullopt;
        }
        modifiers |= held.testFlag(modifier) ? mask : quint16(0);
    }
    return modifiers;
}

QList<quint16> XHotKeys::lockVariants() const
{
    QList<quint16> variants{0};
    for (const quint16 lock : {quint16(XCB_MOD_MASK_LOCK), m_numLock, m_scrollLock}) {
        for (const quint16 variant : QList<quint16>(lock != 0 ? variants : QList<quint16>())) {
            if (!variants.contains(variant | lock)) {
                variants.append(variant | lock);
            }
        }
    }
    return variants;
}

bool XHotKeys::grab(const Grab &grab)
{
    xcb_connection_t *const display = m_connection->get();
    QList<xcb_void_cookie_t> asked;
    for (const quint16 locks : lockVariants()) {
        asked.append(xcb_grab_key_checked(display, 0, m_connection->root(), grab.modifiers | locks, grab.keycode,
                                          XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC));
    }
    const auto refused = std::count_if(asked.begin(), asked.end(),
                                       [this](xcb_void_cookie_t cookie) { return !m_connection->wasDone(cookie); });
    if (refused > 0) {
        ungrab(grab);
    }
    return refused == 0;
}

void XHotKeys::ungrab(const Grab &grab)
{
    for (const quint16 locks : lockVariants()) {
        xcb_ungrab_key(m_connection->get(), grab.keycode, m_connection->root(), grab.modifiers | locks);
    }
    xcb_flush(m_connection->get());
}

void XHotKeys::take(Entry &entry)
{
    entry.problem.clear();
    if (!entry.key) {
        entry.problem = zqLocalized("These keys can't be taken from other programs. Choose keys with Ctrl, Alt or "
                                    "Super, or a function key.");
        return;
    }
    const QString keys = entry.key->text();
    const bool isOurs = std::any_of(m_entries.cbegin(), m_entries.cend(), [&entry](const Entry &other) {
        return other.key == entry.key && !other.grabs.isEmpty();
    });
    const QList<xcb_keycode_t> keycodes = keycodesFor(entry.key->keysym());
    const auto modifiers = modifiersFor(*entry.key);
    if (!m_connection->isAlive()) {
        entry.problem = zqLocalized("The display is gone. Start Zelto again.");
    } else if (isOurs) {
        entry.problem = zqFormat(zqLocalized("%@ already does something else in Zelto. Choose other keys."), {keys});
    } else if (keycodes.isEmpty() || !modifiers) {
        entry.problem = zqFormat(zqLocalized("This keyboard has no %@. Choose other keys."), {keys});
    }
    for (const xcb_keycode_t keycode : entry.problem.isEmpty() ? keycodes : QList<xcb_keycode_t>()) {
        if (!grab({keycode, *modifiers})) {
            letGo(entry);
            entry.problem =
                zqFormat(zqLocalized("%@ is taken by another program. Choose other keys, or free them there."), {keys});
            return;
        }
        entry.grabs.append({keycode, *modifiers});
    }
}

void XHotKeys::letGo(Entry &entry)
{
    for (const Grab &each : std::exchange(entry.grabs, {})) {
        ungrab(each);
    }
}

// Whether any is otherwise than before.
bool XHotKeys::takeWhatFailed()
{
    bool isOther = false;
    for (Entry &entry : m_entries) {
        if (entry.grabs.isEmpty()) {
            const QString before = entry.problem;
            take(entry);
            isOther = isOther || before != entry.problem;
        }
    }
    // What came while answers were waited for is read already, and wakes nobody.
    QMetaObject::invokeMethod(this, &XHotKeys::readEvents, Qt::QueuedConnection);
    return isOther;
}

QString XHotKeys::registerHotKey(const QString &command, const QVariantMap &setting, std::function<void()> run)
{
    Entry former = m_entries.take(command);
    letGo(former);
    if (!setting.isEmpty()) {
        Entry entry{HotKey::fromSetting(setting), std::move(run)};
        take(entry);
        m_entries.insert(command, entry);
    }
    if (takeWhatFailed()) { // for others the keys may be free now
        ZQNotificationCenter::defaultCenter().postNotification(stateDidChange);
    }
    return problemOfHotKey(command);
}

QString XHotKeys::problemOfHotKey(const QString &command) const
{
    return m_entries.value(command).problem;
}

void XHotKeys::takeAllAnew()
{
    for (Entry &entry : m_entries) {
        letGo(entry); // as the keyboard was
    }
    readKeyboard();
    if (takeWhatFailed()) {
        ZQNotificationCenter::defaultCenter().postNotification(stateDidChange);
    }
}

void XHotKeys::keyWasPressed(const xcb_key_press_event_t &event)
{
    const bool repeats = event.detail == m_released && event.time == m_releaseTime;
    const quint16 locks = XCB_MOD_MASK_LOCK | m_numLock | m_scrollLock;
    const auto modifiers = quint16(event.state & realModifiers & ~locks);
    const auto pressed = std::find_if(m_entries.begin(), m_entries.end(), [&](const Entry &entry) {
        return std::any_of(entry.grabs.begin(), entry.grabs.end(), [&](const Grab &each) {
            return each.keycode == event.detail && each.modifiers == modifiers;
        });
    });
    if (pressed != m_entries.end() && pressed->run && !repeats) {
        QMetaObject::invokeMethod(this, pressed->run, Qt::QueuedConnection); // it may register anew
    }
}

void XHotKeys::readEvents()
{
    while (const ZQXReply<xcb_generic_event_t> event{xcb_poll_for_event(m_connection->get())}) {
        switch (event->response_type & ~sentByProgram) {
        case XCB_KEY_PRESS:
            keyWasPressed(*reinterpret_cast<const xcb_key_press_event_t *>(event.get()));
            break;
        case XCB_KEY_RELEASE: {
            const auto *const release = reinterpret_cast<const xcb_key_release_event_t *>(event.get());
            m_released = release->detail;
            m_releaseTime = release->time;
            break;
        }
        case XCB_MAPPING_NOTIFY:
            m_keyboardChanged.start();
            break;
        default:
            break;
        }
    }
    if (!m_connection->isAlive()) {
        m_notifier.setEnabled(false);
    }
}
