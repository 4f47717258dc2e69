// Collects a scene and writes it as text glTF 2.0 with its numbers in a .bin file beside it.
import fs from 'node:fs';
import path from 'node:path';
import { makeTangents } from './mesh.mjs';
import { encodePng } from './png.mjs';

const float32 = 5126;
const uint16 = 5123;
const uint8 = 5121;
const vertexTarget = 34962;
const indexTarget = 34963;
const componentCounts = { SCALAR: 1, VEC2: 2, VEC3: 3, VEC4: 4, MAT4: 16 };
const mostInfluences = 4;

const rounded = (value) => Math.fround(Math.round(value * 1e6) / 1e6) || 0;
// Not cut to six places: rotations are to stay of unit length.
const roundedTurn = (quaternion) => quaternion.map((value) => Math.fround(value) || 0);

export class GltfFile {
  #json = {
    asset: { version: '2.0', generator: 'node examples/make_examples.mjs' },
    scene: 0,
    scenes: [{ nodes: [] }],
    nodes: [],
    meshes: [],
    materials: [],
    accessors: [],
    bufferViews: [],
    buffers: [],
  };
  #bytes = [];
  #size = 0;
  #images = new Map();
  #meshes = new Map();

  // pictures: { file name: image, see png.mjs }; wrap: 'repeat' or 'clamp'
  constructor(pictures = {}) {
    this.pictures = pictures;
  }

  texture(picture, wrap = 'repeat') {
    const json = this.#json;
    if (!(picture in this.pictures)) throw new Error(`no picture ${picture}`);
    json.images ??= [];
    json.textures ??= [];
    json.samplers ??= ['repeat', 'clamp'].map((mode) => {
      const code = mode === 'repeat' ? 10497 : 33071;
      return { magFilter: 9729, minFilter: 9987, wrapS: code, wrapT: code };
    });
    if (!this.#images.has(picture)) {
      this.#images.set(picture, json.images.push({ uri: picture }) - 1);
    }
    const texture = { sampler: wrap === 'repeat' ? 0 : 1, source: this.#images.get(picture) };
    return { index: json.textures.push(texture) - 1 };
  }

  // colour is linear, with alpha; the rest is glTF's own.
  material(name, { colour = [1, 1, 1, 1], picture, wrap, normals, metallic = 0, roughness = 0.6,
                   emissive, alphaMode, doubleSided } = {}) {
    const surface = { baseColorFactor: colour, metallicFactor: metallic,
                      roughnessFactor: roughness };
    if (picture) surface.baseColorTexture = this.texture(picture, wrap);
    const material = { name, pbrMetallicRoughness: surface };
    if (name === undefined) delete material.name;
    if (normals) material.normalTexture = this.texture(normals, wrap);
    if (emissive) material.emissiveFactor = emissive;
    if (alphaMode) material.alphaMode = alphaMode;
    if (doubleSided) material.doubleSided = true;
    this.#json.materials.push(material);
  }

  #accessor(rows, type, { componentType = float32, target, limits = false } = {}) {
    const width = componentCounts[type];
    const numbers = rows.flat().map(type === 'VEC4' ? (value) => value : rounded);
    const bytesEach = { [float32]: 4, [uint16]: 2, [uint8]: 1 }[componentType];
    const buffer = Buffer.alloc(Math.ceil((numbers.length * bytesEach) / 4) * 4);
    numbers.forEach((value, i) => {
      if (componentType === float32) buffer.writeFloatLE(value, i * 4);
      else if (componentType === uint16) buffer.writeUInt16LE(value, i * 2);
      else buffer.writeUInt8(value, i);
    });
    const view = { buffer: 0, byteOffset: this.#size, byteLength: numbers.length * bytesEach };
    if (target) view.target = target;
    this.#bytes.push(buffer);
    this.#size += buffer.length;
    const accessor = { bufferView: this.#json.bufferViews.push(view) - 1, componentType,
                       count: numbers.length / width, type };
    if (limits) {
      const column = (c) => numbers.filter((_, i) => i % width === c);
      accessor.min = Array.from({ length: width }, (_, c) => Math.min(...column(c)));
      accessor.max = Array.from({ length: width }, (_, c) => Math.max(...column(c)));
    }
    return this.#json.accessors.push(accessor) - 1;
  }

  #skinAttributes(weights) {
    const padded = weights.map((list) =>
      Array.from({ length: mostInfluences }, (_, i) => list[i] ?? { joint: 0, weight: 0 }));
    return {
      JOINTS_0: this.#accessor(padded.map((list) => list.map(({ joint }) => joint)), 'VEC4',
                               { componentType: uint8, target: vertexTarget }),
      WEIGHTS_0: this.#accessor(padded.map((list) => list.map(({ weight }) => weight)), 'VEC4',
                                { target: vertexTarget }),
    };
  }

  #primitive(primitive) {
    const { material, positions, normals, uvs, indices, weights } = primitive;
    const vertices = { target: vertexTarget };
    const attributes = {
      POSITION: this.#accessor(positions, 'VEC3', { ...vertices, limits: true }),
      NORMAL: this.#accessor(normals, 'VEC3', vertices),
    };
    if (uvs) attributes.TEXCOORD_0 = this.#accessor(uvs, 'VEC2', vertices);
    if (weights) Object.assign(attributes, this.#skinAttributes(weights));
    const json = {
      attributes,
      indices: this.#accessor(indices, 'SCALAR', { componentType: uint16, target: indexTarget }),
    };
    if (material) json.material = this.#materialIndex(material);
    if (this.#json.materials[json.material]?.normalTexture) {
      attributes.TANGENT = this.#accessor(makeTangents(primitive), 'VEC4', vertices);
    }
    return json;
  }

  #materialIndex(name) {
    const index = this.#json.materials.findIndex((material) => material.name === name);
    if (index < 0) throw new Error(`no material ${name}`);
    return index;
  }

  // The same mesh object may stand on several nodes.
  #mesh(mesh, name) {
    if (!this.#meshes.has(mesh)) {
      const primitives = mesh.map((primitive) => this.#primitive(primitive));
      this.#meshes.set(mesh, this.#json.meshes.push({ name, primitives }) - 1);
    }
    return this.#meshes.get(mesh);
  }

  // node: { name, at, turn, mesh, children }, everything but the name may be missing.
  add(node) {
    this.#json.scenes[0].nodes.push(this.#node(node));
  }

  #node({ name, at, turn, mesh, children = [] }) {
    const node = { name };
    const index = this.#json.nodes.push(node) - 1;
    if (at) node.translation = at.map(rounded);
    if (turn) node.rotation = roundedTurn(turn);
    if (mesh) node.mesh = this.#mesh(mesh, name);
    if (children.length > 0) node.children = children.map((child) => this.#node(child));
    return index;
  }

  nodeIndex(name) {
    const index = this.#json.nodes.findIndex((node) => node.name === name);
    if (index < 0) throw new Error(`no node ${name}`);
    return index;
  }

  // joints: [{ name, at }], at being the joint's place when the mesh was bound, unturned.
  skin(nodeName, joints) {
    const inverses = joints.map(({ at: [x, y, z] }) =>
      [1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, -x, -y, -z, 1]);
    this.#json.skins ??= [];
    this.#json.nodes[this.nodeIndex(nodeName)].skin = this.#json.skins.push({
      joints: joints.map(({ name }) => this.nodeIndex(name)),
      inverseBindMatrices: this.#accessor(inverses, 'MAT4'),
    }) - 1;
  }

  // tracks: [{ node, path: 'translation' or 'rotation', keys: [{ time, value }] }], in seconds.
  animation(name, tracks) {
    const animation = { name, samplers: [], channels: [] };
    const inputs = new Map();
    for (const { node, path: property, keys } of tracks) {
      const times = keys.map(({ time }) => time);
      const known = times.join();
      if (!inputs.has(known)) {
        inputs.set(known, this.#accessor(times, 'SCALAR', { limits: true }));
      }
      const type = property === 'rotation' ? 'VEC4' : 'VEC3';
      const output = this.#accessor(keys.map(({ value }) => value), type);
      const sampler = { input: inputs.get(known), output, interpolation: 'LINEAR' };
      animation.channels.push({ sampler: animation.samplers.push(sampler) - 1,
                                target: { node: this.nodeIndex(node), path: property } });
    }
    this.#json.animations ??= [];
    this.#json.animations.push(animation);
  }

  // Writes NAME.gltf, NAME.bin and the pictures that are used.
  write(folder, name) {
    fs.mkdirSync(folder, { recursive: true });
    this.#json.buffers = [{ uri: `${name}.bin`, byteLength: this.#size }];
    // Lists of numbers read better on one line.
    const text = JSON.stringify(this.#json, null, 2)
      .replace(/\[[-\d.,e\s]+\]/g, (list) => list.replace(/\s+/g, '').replace(/,/g, ', '));
    fs.writeFileSync(path.join(folder, `${name}.gltf`), `${text}\n`);
    fs.writeFileSync(path.join(folder, `${name}.bin`), Buffer.concat(this.#bytes));
    for (const picture of this.#images.keys()) {
      fs.writeFileSync(path.join(folder, picture), encodePng(this.pictures[picture]));
    }
  }
}
