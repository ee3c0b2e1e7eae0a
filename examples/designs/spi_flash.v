// A serial flash on an SPI bus (mode 0): a page program with its status polls, and the page read
// back.
//
// The analyzer that this capture stands for samples at 24 MHz, a period of 41.666.. ns. Its stamps
// are that grid rounded to 100 ps: no common step finer than one tick exists, as in files of real
// analyzers. Every wait below is a number of such samples.
`timescale 100ps / 100ps

module flash_memory (
    input CS,
    input CLK,
    input MOSI,
    output reg MISO
);
  reg [7:0] memory[0:255];
  reg [7:0] command, shift, address;
  reg [2:0] busy_polls;
  integer bits, i;

  initial begin
    MISO = 1;
    busy_polls = 0;
    for (i = 0; i < 256; i = i + 1) memory[i] = 8'hff;
  end

  function [7:0] reply(input integer byte_index);
    case (command)
      8'h05: reply = busy_polls > 0 ? 8'h03 : 8'h00;
      8'h03: reply = byte_index < 4 ? 8'hff : memory[address];
      default: reply = 8'hff;
    endcase
  endfunction

  always @(negedge CS) bits = 0;
  always @(posedge CS) begin
    MISO = 1;
    if (command == 8'h02) busy_polls = 3;
    else if (command == 8'h05 && busy_polls > 0) busy_polls = busy_polls - 1;
  end

  always @(posedge CLK) if (!CS) begin
    shift = {shift[6:0], MOSI};
    bits = bits + 1;
    if (bits == 8) command = shift;
    if (bits == 32) address = shift;
    if (bits > 32 && bits % 8 == 0) begin
      if (command == 8'h02) memory[address] = memory[address] & shift;
      address = address + 1;
    end
  end

  reg [7:0] answer;
  always @(negedge CLK) if (!CS && bits >= 8) begin
    answer = reply(bits / 8);
    MISO = answer[7 - bits % 8];
  end
endmodule

module spi_flash;
  localparam SIZE = 32;
  reg CS, CLK, MOSI;
  wire MISO;
  reg [8 * SIZE - 1:0] page;
  reg [63:0] sample;
  integer i, k;

  flash_memory flash (.CS(CS), .CLK(CLK), .MOSI(MOSI), .MISO(MISO));

  // Waits until `count` samples later: the stamp is the sample's time, rounded.
  task wait_samples(input integer count);
    begin
      sample = sample + count;
      #((sample * 10000 + 12) / 24 - $time);
    end
  endtask

  task transfer(input [7:0] value);
    for (k = 7; k >= 0; k = k - 1) begin
      MOSI = value[k];
      wait_samples(3);
      CLK = 1;
      wait_samples(3);
      CLK = 0;
    end
  endtask

  task select;
    begin
      CS = 0;
      wait_samples(5);
    end
  endtask

  task deselect;
    begin
      wait_samples(4);
      CS = 1;
      MOSI = 0;
      wait_samples(240);
    end
  endtask

  task command_at_zero(input [7:0] value);
    begin
      transfer(value);
      transfer(0);
      transfer(0);
      transfer(8'h20);
    end
  endtask

  initial begin
    $dumpfile("spi_flash.vcd");
    $dumpvars(1, CS, CLK, MOSI, MISO);
    page = "Pattern data, one page of flash.";
    CS = 1;
    CLK = 0;
    MOSI = 0;
    sample = 0;
    wait_samples(1000);
    select;
    transfer(8'h06);
    deselect;
    select;
    command_at_zero(8'h02);
    for (i = SIZE - 1; i >= 0; i = i - 1) transfer(page[8 * i +: 8]);
    deselect;
    for (i = 0; i < 4; i = i + 1) begin
      wait_samples(12000);
      select;
      transfer(8'h05);
      transfer(0);
      deselect;
    end
    select;
    command_at_zero(8'h03);
    for (i = 0; i < SIZE; i = i + 1) transfer(0);
    deselect;
    $finish;
  end
endmodule
