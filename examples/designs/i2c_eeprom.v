// A small EEPROM on an I2C bus at 100 kHz: a page write, the write cycle during which the memory
// does not acknowledge, and a sequential read of the page.
//
// Both lines are open-drain wires with pull-ups: whoever pulls low wins.
`timescale 1us / 1us

module eeprom (
    inout SDA,
    input SCL
);
  reg pull;
  assign SDA = pull ? 1'b0 : 1'bz;

  reg [7:0] memory[0:15];
  reg [7:0] shift;
  reg [3:0] address;
  reg listening, reading, writing, busy;
  integer bits, bytes, i;

  initial begin
    pull = 0;
    listening = 0;
    busy = 0;
    writing = 0;
    for (i = 0; i < 16; i = i + 1) memory[i] = 8'hff;
  end

  always @(negedge SDA) if (SCL) begin  // start
    listening = !busy;
    bits = 0;
    bytes = 0;
    reading = 0;
    writing = 0;
  end

  always @(posedge SDA) if (SCL) begin  // stop
    listening = 0;
    if (writing) begin
      busy = 1;
      busy <= #4700 0;
    end
    writing = 0;
  end

  always @(posedge SCL) if (listening) begin
    if (bits < 8) shift = {shift[6:0], SDA !== 1'b0};
    else if (reading && SDA !== 1'b0) listening = 0;  // the master wants no more
    bits = bits + 1;
  end

  // Outputs move while the clock is low, a little after its edge.
  always @(negedge SCL) #1 if (listening) begin
    pull = 0;
    if (bits == 8) begin
      if (bytes == 0 && shift[7:1] != 7'h50) listening = 0;
      else if (bytes == 0 || !reading) pull = 1;
      if (bytes == 0) reading = shift[0] && listening;
      else if (!reading && bytes == 1) address = shift[3:0];
      else if (!reading) begin
        memory[address] = shift;
        address = address + 1;
        writing = 1;
      end
    end else begin
      if (bits == 9) begin
        bits = 0;
        bytes = bytes + 1;
        if (reading) begin
          shift = memory[address];
          address = address + 1;
        end
      end
      if (reading) pull = !shift[7];  // the line's own bits move up from below
    end
  end
endmodule

module i2c_eeprom;
  localparam SIZE = 12;
  reg pull_sda, pull_scl;
  tri1 SDA;
  tri1 SCL;
  assign SDA = pull_sda ? 1'b0 : 1'bz;
  assign SCL = pull_scl ? 1'b0 : 1'bz;
  reg [8 * SIZE - 1:0] text;
  reg acknowledged;
  integer i, k;

  eeprom memory (.SDA(SDA), .SCL(SCL));

  task start;
    begin
      pull_sda = 0;
      #3 pull_scl = 0;
      #5 pull_sda = 1;
      #5 pull_scl = 1;
    end
  endtask

  task stop;
    begin
      #2 pull_sda = 1;
      #3 pull_scl = 0;
      #5 pull_sda = 0;
      #20;
    end
  endtask

  task clock_bit(input value);
    begin
      #2 pull_sda = !value;
      #3 pull_scl = 0;
      #3 acknowledged = SDA === 1'b0;
      #2 pull_scl = 1;
    end
  endtask

  task send(input [7:0] value);
    begin
      for (k = 7; k >= 0; k = k - 1) clock_bit(value[k]);
      clock_bit(1);
    end
  endtask

  task receive(input last);
    begin
      for (k = 7; k >= 0; k = k - 1) clock_bit(1);
      clock_bit(last);
    end
  endtask

  initial begin
    $dumpfile("i2c_eeprom.vcd");
    $dumpvars(1, SDA, SCL);
    text = "Hello, pins!";
    pull_sda = 0;
    pull_scl = 0;
    acknowledged = 0;
    #2000 start;
    send(8'ha0);
    send(8'h02);
    for (i = SIZE - 1; i >= 0; i = i - 1) send(text[8 * i +: 8]);
    stop;
    acknowledged = 0;
    while (!acknowledged) begin  // the memory answers again when its write cycle is over
      #900 start;
      send(8'ha0);
      if (!acknowledged) stop;
    end
    send(8'h02);
    start;
    send(8'ha1);
    for (i = 0; i < SIZE; i = i + 1) receive(i == SIZE - 1);
    stop;
    #250000 $finish;
  end
endmodule
