// Draws a picture of one or two lenses, or a panorama, as a view asks for it, with WebGL 2. It lives where its canvas lives:
// in a worker or in the page.

import { kUnchanged } from "./colour.js";
import { kRimMargin } from "./lens.js";
import { fragmentShader, kCellPixels, kVertexShader, Mapping, Planes, Projections } from "./shaders.js";

const kLongestDrawing = 2000; // milliseconds that are waited for

function compiled(gl, kind, source) {
  const shader = gl.createShader(kind);
  gl.shaderSource(shader, source);
  gl.compileShader(shader);
  if (!gl.getShaderParameter(shader, gl.COMPILE_STATUS) && !gl.isContextLost()) throw new Error(gl.getShaderInfoLog(shader));
  return shader;
}

const kCornerAttribute = 0;

// A program for pictures of that kind, and where its uniforms are.
function linked(gl, planes, mapping) {
  const program = gl.createProgram();
  gl.attachShader(program, compiled(gl, gl.VERTEX_SHADER, kVertexShader));
  gl.attachShader(program, compiled(gl, gl.FRAGMENT_SHADER, fragmentShader(planes, mapping)));
  gl.bindAttribLocation(program, kCornerAttribute, "corner");
  gl.linkProgram(program);
  if (!gl.getProgramParameter(program, gl.LINK_STATUS) && !gl.isContextLost()) throw new Error(gl.getProgramInfoLog(program));
  const uniforms = new Map();
  for (let at = 0; at < gl.getProgramParameter(program, gl.ACTIVE_UNIFORMS); ++at) {
    const { name } = gl.getActiveUniform(program, at);
    uniforms.set(name.replace("[0]", ""), gl.getUniformLocation(program, name));
  }
  gl.useProgram(program);
  ["first", "second", "third"].forEach((name, unit) => gl.uniform1i(uniforms.get(name) ?? null, unit));
  return { program, place: (name) => uniforms.get(name) ?? null };
}

function texture(gl, unit) {
  gl.activeTexture(gl.TEXTURE0 + unit);
  const made = gl.createTexture();
  gl.bindTexture(gl.TEXTURE_2D, made);
  gl.texParameteri(gl.TEXTURE_2D, gl.TEXTURE_MIN_FILTER, gl.LINEAR);
  gl.texParameteri(gl.TEXTURE_2D, gl.TEXTURE_MAG_FILTER, gl.LINEAR);
  gl.texParameteri(gl.TEXTURE_2D, gl.TEXTURE_WRAP_S, gl.CLAMP_TO_EDGE);
  gl.texParameteri(gl.TEXTURE_2D, gl.TEXTURE_WRAP_T, gl.CLAMP_TO_EDGE);
  return { made, shape: "" };
}

// Corners of the cells, and the triangles between them.
function meshOf(width, height) {
  const [across, down] = [Math.ceil(width / kCellPixels), Math.ceil(height / kCellPixels)];
  const corners = new Float32Array(2 * (across + 1) * (down + 1));
  const indices = new Uint32Array(6 * across * down);
  let [corner, index] = [0, 0];
  for (let row = 0; row <= down; ++row) {
    for (let column = 0; column <= across; ++column) {
      corners[corner++] = (2 * column) / across - 1;
      corners[corner++] = 1 - (2 * row) / down;
      if (row === down || column === across) continue;
      const at = row * (across + 1) + column;
      indices.set([at, at + across + 1, at + 1, at + 1, at + across + 1, at + across + 2], index);
      index += 6;
    }
  }
  return { corners, indices };
}

export class Renderer {
  #gl;
  #programs = new Map(); // by the kind of picture
  #lens; // as the shaders take it
  #gains = [1, 1];
  #colour = kUnchanged;
  #textures;
  #mesh = { width: 0, height: 0, count: 0 };
  #planes = Planes.rgb;
  #target = null;

  constructor(canvas) {
    const gl = canvas.getContext("webgl2", { alpha: false, antialias: false, depth: false, preserveDrawingBuffer: true });
    if (!gl) throw new Error("WebGL 2 is missing");
    this.#gl = gl;
    gl.pixelStorei(gl.UNPACK_ALIGNMENT, 1);
    gl.pixelStorei(gl.UNPACK_COLORSPACE_CONVERSION_WEBGL, gl.NONE);
    this.#textures = [0, 1, 2].map((unit) => texture(gl, unit));
    gl.bindBuffer(gl.ARRAY_BUFFER, gl.createBuffer());
    gl.bindBuffer(gl.ELEMENT_ARRAY_BUFFER, gl.createBuffer());
    gl.enableVertexAttribArray(kCornerAttribute);
    gl.vertexAttribPointer(kCornerAttribute, 2, gl.FLOAT, false, 0, 0);
    this.setLens(null);
    this.#useProgram(Mapping.lenses); // so that shaders that a browser refuses are told at once
  }

  #useProgram(mapping) {
    const key = `${this.#planes} ${mapping}`;
    if (!this.#programs.has(key)) this.#programs.set(key, linked(this.#gl, this.#planes, mapping));
    const made = this.#programs.get(key);
    this.#gl.useProgram(made.program);
    return made.place;
  }

  isLost() {
    return this.#gl.isContextLost();
  }

  // lens: of parseOffset(), or null.
  setLens(lens) {
    const lenses = lens?.lenses ?? [];
    const both = [0, 1].map((at) => lenses[at] ?? { axes: [[1, 0, 0], [0, 1, 0], [0, 0, 1]], centre: [0, 0], scale: [0, 0] });
    this.#lens = {
      count: lenses.length,
      axes: both.flatMap(({ axes }) => axes.flat()),
      places: both.flatMap(({ centre, scale }) => [...centre, ...scale]),
      rim: lens ? lens.fieldOfView / 2 - kRimMargin : 0,
    };
  }

  setGains(gains) {
    this.#gains = gains;
  }

  setColour(colour) {
    this.#colour = colour;
  }

  // Takes a picture's planes, as VideoFrame.copyTo() lays them out. format: I420 or NV12.
  setPlanes(format, bytes, layout, width, height) {
    const gl = this.#gl;
    const [halfWidth, halfHeight] = [(width + 1) >> 1, (height + 1) >> 1];
    this.#plane(0, gl.R8, gl.RED, 1, bytes, layout[0], width, height);
    if (format === "NV12") {
      this.#plane(1, gl.RG8, gl.RG, 2, bytes, layout[1], halfWidth, halfHeight);
    } else {
      this.#plane(1, gl.R8, gl.RED, 1, bytes, layout[1], halfWidth, halfHeight);
      this.#plane(2, gl.R8, gl.RED, 1, bytes, layout[2], halfWidth, halfHeight);
    }
    this.#planes = format === "NV12" ? Planes.two : Planes.three;
  }

  #plane(unit, inner, format, sampleBytes, bytes, { offset, stride }, width, height) {
    const gl = this.#gl;
    const one = this.#textures[unit];
    const shape = `${inner} ${width} ${height}`;
    gl.activeTexture(gl.TEXTURE0 + unit);
    gl.pixelStorei(gl.UNPACK_ROW_LENGTH, stride / sampleBytes);
    if (one.shape !== shape) gl.texImage2D(gl.TEXTURE_2D, 0, inner, width, height, 0, format, gl.UNSIGNED_BYTE, null);
    one.shape = shape;
    gl.texSubImage2D(gl.TEXTURE_2D, 0, 0, 0, width, height, format, gl.UNSIGNED_BYTE, bytes, offset);
    gl.pixelStorei(gl.UNPACK_ROW_LENGTH, 0);
  }

  // Takes a picture as the browser shows it: a video, an image, a bitmap or a VideoFrame.
  setImage(image) {
    const gl = this.#gl;
    gl.activeTexture(gl.TEXTURE0);
    gl.texImage2D(gl.TEXTURE_2D, 0, gl.RGBA, gl.RGBA, gl.UNSIGNED_BYTE, image);
    this.#textures[0].shape = "";
    this.#planes = Planes.rgb;
  }

  largestSide() {
    return this.#gl.getParameter(this.#gl.MAX_TEXTURE_SIZE);
  }

  // shape: of View.shape(). mapping: what the picture is.
  draw(shape, mapping, width, height) {
    const gl = this.#gl;
    this.#useMesh(width, height);
    gl.viewport(0, 0, width, height);
    const place = this.#useProgram(shape.projection === "lenses" ? Mapping.picture : mapping);
    gl.uniform1i(place("lensCount"), this.#lens.count);
    gl.uniformMatrix3fv(place("axes"), false, this.#lens.axes);
    gl.uniform4fv(place("places"), this.#lens.places);
    gl.uniform1f(place("rim"), this.#lens.rim);
    gl.uniform2fv(place("gains"), this.#gains);
    gl.uniformMatrix3fv(place("colour"), false, this.#colour.matrix);
    gl.uniform3fv(place("shift"), this.#colour.shift);
    gl.uniform1i(place("projection"), Projections[shape.projection]);
    gl.uniformMatrix3fv(place("turn"), false, shape.turn);
    gl.uniform2fv(place("reach"), shape.reach);
    gl.uniform2fv(place("from"), shape.from);
    gl.drawElements(gl.TRIANGLES, this.#mesh.count, gl.UNSIGNED_INT, 0);
  }

  #useMesh(width, height) {
    if (this.#mesh.width === width && this.#mesh.height === height) return;
    const gl = this.#gl;
    const { corners, indices } = meshOf(width, height);
    gl.bufferData(gl.ARRAY_BUFFER, corners, gl.STATIC_DRAW);
    gl.bufferData(gl.ELEMENT_ARRAY_BUFFER, indices, gl.STATIC_DRAW);
    this.#mesh = { width, height, count: indices.length };
  }

  // Waits until everything is drawn, without holding up this thread: finish() of browsers does not wait for a GPU process.
  async finished() {
    const gl = this.#gl;
    const fence = gl.fenceSync(gl.SYNC_GPU_COMMANDS_COMPLETE, 0);
    gl.flush();
    const end = performance.now() + kLongestDrawing;
    while (fence && !gl.isContextLost() && gl.getSyncParameter(fence, gl.SYNC_STATUS) === gl.UNSIGNALED && performance.now() < end) {
      await new Promise((done) => setTimeout(done, 1));
    }
    gl.deleteSync(fence);
  }

  // The picture of a view in any size, as pixels from the top row down; the canvas keeps what it shows.
  pixels(shape, mapping, width, height) {
    const gl = this.#gl;
    this.#target ??= { frame: gl.createFramebuffer(), store: gl.createRenderbuffer() };
    gl.bindRenderbuffer(gl.RENDERBUFFER, this.#target.store);
    gl.renderbufferStorage(gl.RENDERBUFFER, gl.RGBA8, width, height);
    gl.bindFramebuffer(gl.FRAMEBUFFER, this.#target.frame);
    gl.framebufferRenderbuffer(gl.FRAMEBUFFER, gl.COLOR_ATTACHMENT0, gl.RENDERBUFFER, this.#target.store);
    this.draw(shape, mapping, width, height);
    const upwards = new Uint8ClampedArray(4 * width * height);
    gl.readPixels(0, 0, width, height, gl.RGBA, gl.UNSIGNED_BYTE, new Uint8Array(upwards.buffer));
    gl.bindFramebuffer(gl.FRAMEBUFFER, null);
    const downwards = new Uint8ClampedArray(upwards.length);
    for (let row = 0; row < height; ++row) {
      downwards.set(upwards.subarray(4 * width * row, 4 * width * (row + 1)), 4 * width * (height - 1 - row));
    }
    return new ImageData(downwards, width, height);
  }
}
