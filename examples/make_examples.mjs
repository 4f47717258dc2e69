// Makes every model and picture of the example scenes anew, byte for byte.
import path from 'node:path';
import { fileURLToPath } from 'node:url';
import { makeRailcar } from './generator/railcar/scene.mjs';

const here = path.dirname(fileURLToPath(import.meta.url));

makeRailcar().write(path.join(here, 'railcar'), 'railcar');
