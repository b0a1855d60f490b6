// The records of live.units: length (u32, of what follows), kind (u8), flags (u8), time (s64, microseconds), payload;
// little-endian.

export const Kind = Object.freeze({ description: 0, picture: 1, sound: 2 });
export const Flag = Object.freeze({ key: 1, discontinuity: 2 });

const kLengthBytes = 4;
const kHeadBytes = 1 + 1 + 8; // kind, flags, time
const kMostBytes = 64 << 20; // a longer record means that the position in the stream is lost

function recordAt(bytes, at, length) {
  const view = new DataView(bytes.buffer, bytes.byteOffset + at, length);
  return {
    kind: view.getUint8(0),
    flags: view.getUint8(1),
    time: Number(view.getBigInt64(2, true)),
    payload: bytes.subarray(at + kHeadBytes, at + length),
  };
}

// Cuts a stream of bytes, which come in pieces of any size, into records.
export class UnitCutter {
  #rest = new Uint8Array(0);
  #used = 0; // bytes of the rest that belong to the begun record

  // The records that the bytes complete. Throws where the bytes are no such stream.
  push(bytes) {
    this.#append(bytes);
    const records = [];
    let at = 0;
    while (this.#used - at >= kLengthBytes) {
      const length = new DataView(this.#rest.buffer, at, kLengthBytes).getUint32(0, true);
      if (length < kHeadBytes || length > kMostBytes) throw new Error("live.units: a record's length makes no sense");
      if (this.#used - at < kLengthBytes + length) break;
      records.push(recordAt(this.#rest.slice(at + kLengthBytes, at + kLengthBytes + length), 0, length));
      at += kLengthBytes + length;
    }
    this.#rest.copyWithin(0, at, this.#used);
    this.#used -= at;
    return records;
  }

  // Doubles the room, so that a large picture in many pieces is not copied with each of them.
  #append(bytes) {
    const needed = this.#used + bytes.length;
    if (needed > this.#rest.length) {
      const larger = new Uint8Array(Math.max(needed, 2 * this.#rest.length));
      larger.set(this.#rest.subarray(0, this.#used));
      this.#rest = larger;
    }
    this.#rest.set(bytes, this.#used);
    this.#used = needed;
  }
}
