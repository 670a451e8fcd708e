#pragma once

#include "serial/exchangeitems.h"

#include <QQueue>

#include <algorithm>
#include <optional>
#include <utility>

/**
 * The reads, or the writes, that one instrument still has to do. The head is the one in progress
 * once it has been handed over, unless it was abandoned since; each is handed over once, and is
 * done when its result has come.
 */
template<typename Item>
class ExchangeQueue
{
public:
    /** Appends an item. */
    void push(const Item &item)
    {
        m_wasUsed = true;
        m_items.enqueue(item);
    }

    /** Appends an item unless an equal one waits behind the head. */
    void pushUnlessWaiting(const Item &item)
    {
        const auto waiting = m_items.begin() + std::min(1, m_items.size());
        if (std::find(waiting, m_items.end(), item) == m_items.end())
            push(item);
    }

    /** Hands the head over, to be carried out; nothing while one is handed over already. */
    std::optional<Item> takeHead()
    {
        if (m_handedOver || m_items.isEmpty())
            return std::nullopt;
        m_handedOver = true;
        return m_items.head();
    }

    /** What was handed over is done: the item taken off; nothing when it was abandoned. */
    std::optional<Item> finish()
    {
        if (!takeResult() || m_items.isEmpty())
            return std::nullopt;
        return m_items.dequeue();
    }

    /** What was handed over, of that mode, failed: normal takes all others with it. */
    void fail(noxQueryMode mode)
    {
        if (!takeResult() || m_items.isEmpty())
            return;
        if (mode == noxQueryModeNormal)
            m_items.clear();
        else
            m_items.dequeue();
    }

    /** Forgets all items. The result of the one handed over is still to come, and changes none. */
    void abandon()
    {
        m_wasUsed = true;
        m_items.clear();
        m_abandoned = m_handedOver;
    }

    /** An item has been handed over and its result has not come, whether abandoned or not. */
    bool isHandedOver() const { return m_handedOver; }
    bool isEmpty() const { return m_items.isEmpty(); }
    int size() const { return m_items.size(); }
    /** It has had an item, or has been abandoned. */
    bool wasUsed() const { return m_wasUsed; }

private:
    /** A result has come; whether it is that of the head. */
    bool takeResult()
    {
        m_handedOver = false;
        return !std::exchange(m_abandoned, false);
    }

    QQueue<Item> m_items;
    bool m_wasUsed = false;
    bool m_handedOver = false;
    bool m_abandoned = false;
};
