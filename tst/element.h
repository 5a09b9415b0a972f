// Element types of test data.
#pragma once

#include <cstdint>
#include <type_traits>

enum class Element : uint8_t { u8, s8, u16, s16, u32, s32, u64, f32 };

constexpr uint32_t sizeOf(Element element)
{
    constexpr uint8_t sizes[] = {1, 1, 2, 2, 4, 4, 8, 4};
    return sizes[static_cast<unsigned>(element)];
}

template <class T>
constexpr Element elementOf()
{
    if constexpr (std::is_same_v<T, float>)
        return Element::f32;
    else if constexpr (sizeof(T) == 1)
        return std::is_signed_v<T> ? Element::s8 : Element::u8;
    else if constexpr (sizeof(T) == 2)
        return std::is_signed_v<T> ? Element::s16 : Element::u16;
    else if constexpr (sizeof(T) == 4)
        return std::is_signed_v<T> ? Element::s32 : Element::u32;
    else {
        static_assert(std::is_same_v<T, uint64_t>, "no test data of this type");
        return Element::u64;
    }
}

// Calls `action` with a value of the element's type: visitElement(Element::s16, [](auto zero) { ... }).
template <class Action>
decltype(auto) visitElement(Element element, Action action)
{
    switch (element) {
    case Element::u8:
        return action(uint8_t{});
    case Element::s8:
        return action(int8_t{});
    case Element::u16:
        return action(uint16_t{});
    case Element::s16:
        return action(int16_t{});
    case Element::u32:
        return action(uint32_t{});
    case Element::s32:
        return action(int32_t{});
    case Element::u64:
        return action(uint64_t{});
    case Element::f32:
        break;
    }
    return action(float{});
}
