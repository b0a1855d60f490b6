// Numbers of a record as the hex of its wire form, little-endian.

const kBytes = { u8: 1, s8: 1, u16: 2, s16: 2, u32: 4, s32: 4 };
const kRange = { u8: [0, 255], s8: [-128, 127], u16: [0, 65535], s16: [-32768, 32767], u32: [0, 4294967295],
  s32: [-2147483648, 2147483647] };

export const rangeOf = (type) => kRange[type] ?? null;

export function packed(types, values) {
  return types.map((type, at) => {
    let rest = BigInt.asUintN(8 * kBytes[type], BigInt(values[at]));
    let text = "";
    for (let byte = 0; byte < kBytes[type]; ++byte, rest >>= 8n) text += Number(rest & 255n).toString(16).padStart(2, "0");
    return text;
  }).join("");
}

// The record's numbers; null where the hex is too short.
export function unpacked(types, hex) {
  const values = [];
  let at = 0;
  for (const type of types) {
    const bytes = String(hex).slice(at, at + 2 * kBytes[type]).match(/../g) ?? [];
    if (bytes.length < kBytes[type]) return null;
    const bits = BigInt(`0x${[...bytes].reverse().join("")}`);
    values.push(Number(type[0] === "s" ? BigInt.asIntN(8 * kBytes[type], bits) : bits));
    at += 2 * kBytes[type];
  }
  return values;
}
